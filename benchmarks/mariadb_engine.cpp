#include "benchmarks/database_engine.h"
#include "benchmarks/mariadb_peer.h"
#include "tests/support/mariadb_server.h"

#include <algorithm>

namespace bench {
namespace {
/// The buffers hold the data that a row reads, and the log need not be written back while databases
/// are filled. Sorting keeps its default: a larger sort_buffer_size is slower.
const std::vector<std::string>& server_options()
{
    static const std::vector<std::string> options{
        "--innodb-buffer-pool-size=6G", "--innodb-log-file-size=2G"};
    return options;
}

/// Databases of the server. The comment of a database says that it is complete.
class MariaDbEngine final : public DatabaseEngine
{
public:
    explicit MariaDbEngine(const std::string& folder) : server_(folder, server_options()) {}

    std::string description() override
    {
        return "MariaDB " +
               open_mariadb_peer(placeOf(""))->texts("SELECT version()").front().front();
    }

    [[nodiscard]] bool isServer() const override { return true; }

    [[nodiscard]] dbif::ConnectionParameters place(const std::string& name) const override
    {
        return placeOf(databaseName(name));
    }

    [[nodiscard]] std::unique_ptr<PeerDatabase> openPeer(const std::string& name) const override
    {
        return open_mariadb_peer(place(name));
    }

private:
    bool isComplete(const std::string& name) override
    {
        const Values comments =
            open_mariadb_peer(placeOf(""))
                ->texts(
                    "SELECT schema_comment FROM information_schema.schemata WHERE schema_name = ?",
                    databaseName(name));
        return comments == Values{{kComplete}};
    }

    dbif::ConnectionParameters makeEmpty(const std::string& name) override
    {
        server_.execute("CREATE OR REPLACE DATABASE " + databaseName(name));
        return place(name);
    }

    void complete(const std::string& name) override
    {
        server_.execute("ALTER DATABASE " + databaseName(name) + " COMMENT '" + kComplete + "'");
    }

    [[nodiscard]] dbif::ConnectionParameters placeOf(const std::string& database) const
    {
        return {"QMYSQL",       server_.host(),     database,
                server_.user(), server_.password(), server_.port()};
    }

    /// A name that needs no quotes.
    static std::string databaseName(std::string name)
    {
        std::replace(name.begin(), name.end(), '.', '_');
        return name;
    }

    static constexpr const char* kComplete = "complete";

    MariaDbServer server_;
};
} // namespace

std::unique_ptr<DatabaseEngine> mariadb_engine(const std::string& folder)
{
    return std::make_unique<MariaDbEngine>(folder);
}
} // namespace bench
