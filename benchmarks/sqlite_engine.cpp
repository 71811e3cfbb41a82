#include "benchmarks/database_engine.h"
#include "benchmarks/sqlite_peer.h"

#include <filesystem>
#include <sqlite3.h>

namespace bench {
namespace {
namespace fs = std::filesystem;

/// A file is filled under another name, and what bears the right name is complete.
class SqliteEngine final : public DatabaseEngine
{
public:
    explicit SqliteEngine(std::string folder) : folder_(std::move(folder)) {}

    std::string description() override { return std::string("SQLite ") + sqlite3_libversion(); }

    [[nodiscard]] bool isServer() const override { return false; }

    [[nodiscard]] dbif::ConnectionParameters place(const std::string& name) const override
    {
        dbif::ConnectionParameters place;
        place.driver = "QSQLITE";
        place.database = path(name);
        return place;
    }

    [[nodiscard]] std::unique_ptr<PeerDatabase> openPeer(const std::string& name) const override
    {
        return open_sqlite_peer(path(name));
    }

private:
    bool isComplete(const std::string& name) override { return fs::exists(path(name)); }

    dbif::ConnectionParameters makeEmpty(const std::string& name) override
    {
        dbif::ConnectionParameters unfinished = place(name);
        unfinished.database = unfinishedPath(name);
        for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
            fs::remove(unfinished.database + suffix);
        }
        return unfinished;
    }

    void complete(const std::string& name) override
    {
        fs::rename(unfinishedPath(name), path(name));
    }

    [[nodiscard]] std::string path(const std::string& name) const
    {
        return folder_ + "/" + name + ".db";
    }

    [[nodiscard]] std::string unfinishedPath(const std::string& name) const
    {
        return path(name) + ".unfinished";
    }

    std::string folder_;
};
} // namespace

std::unique_ptr<DatabaseEngine> sqlite_engine(const std::string& folder)
{
    return std::make_unique<SqliteEngine>(folder);
}
} // namespace bench
