#include "dbapi/call/call_cache.h"
#include "dbapi/dbapi.h"
#include "dbui/connection_check.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_path.h"

#include "tests/support/lab_database.h"
#include "tests/support/sqlite_file.h"

#include <QVariant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {
using test_support::Engine;
using testing::HasSubstr;

/// The devices of the stored connection "lab", or why there are none to be had.
std::string devices()
{
    std::vector<std::string> names;
    std::string errors;
    return dbapi::db_get_values_for_keyword_as_text("lab", "$DEVNAME", &names, "", &errors)
               ? test_support::joined(names)
               : errors;
}

/// The server's number of the connection that the library keeps open between calls.
int kept_connection()
{
    QSqlQuery query = dbapi_get_cached_connection()->query(
        QStringLiteral("SELECT CONNECTION_ID()"), 0, __FILE__, __LINE__);
    return query.next() ? query.value(0).toInt() : 0;
}

void wait_until_gone(test_support::MeasurementDatabase& database, int connection)
{
    const std::string sql =
        "SELECT id FROM information_schema.processlist WHERE id = " + std::to_string(connection);
    while (!database.rows(sql).empty()) {
        usleep(10'000);
    }
}

TEST(StayingConnected, MySqlConnectionsThatTheServerEnded)
{
    test_support::LabDatabase lab(Engine::MariaDb);
    const std::string all = devices();
    EXPECT_EQ(all, "d3;lonely;n1;n2;");

    int connection = kept_connection();
    MariaDbServer::instance().execute("KILL " + std::to_string(connection));
    wait_until_gone(lab, connection);
    EXPECT_EQ(devices(), all);

    connection = kept_connection();
    dbapi_get_cached_connection()->query(
        QStringLiteral("SET SESSION wait_timeout = 1"), 0, __FILE__, __LINE__);
    wait_until_gone(lab, connection);
    EXPECT_EQ(devices(), all);
    EXPECT_NE(kept_connection(), connection);
}

/// A server of one test's own, which can be stopped and started again.
class OwnServer
{
public:
    OwnServer()
    {
        run("start");
        std::ifstream state(folder_.file(std::to_string(getpid()) + "/server"));
        std::getline(state, port);
        std::getline(state, user);
        std::getline(state, password);
    }

    ~OwnServer() { run("stop"); }

    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;

    void halt() { run("halt"); }

    void resume() { run("resume"); }

    std::string port;
    std::string user;
    std::string password;

private:
    void run(const std::string& command)
    {
        const std::string line = std::string("'") + MARIADB_FIXTURE + "' " + command + " '" +
                                 folder_.path() + "' " + std::to_string(getpid());
        EXPECT_EQ(std::system(line.c_str()), 0) << line;
    }

    test_support::TempDirectory folder_;
};

TEST(StayingConnected, SurvivesARestartOfTheServer)
{
    OwnServer server;
    const DbuiConnection record(
        "lab", "QMYSQL", "127.0.0.1", server.port, "meas", server.user, server.password);
    std::string error;
    ASSERT_TRUE(dbui_validate_connection_opens(record, false, &error)) << error;
    ASSERT_TRUE(dbui_add_connection(record, false, &error)) << error;
    EXPECT_EQ(devices(), "");
    ASSERT_EQ(dbapi_get_cached_connection()->isValid(), true);

    server.halt();
    server.resume();
    EXPECT_EQ(devices(), "");

    server.halt();
    for (int call = 0; call < 2; ++call) {
        EXPECT_THAT(devices(), HasSubstr("Can't connect to server on '127.0.0.1'"));
    }
    server.resume();
    EXPECT_EQ(devices(), "");
}

std::string value_of(const std::string& keyword)
{
    std::vector<std::string> values;
    std::string errors;
    return dbapi::db_get_values_for_keyword_as_text("lab", keyword, &values, "", &errors)
               ? test_support::joined(values)
               : errors;
}

/// A database of one device with these keys, in this order.
class OneDevice : public test_support::MeasurementDatabase
{
public:
    explicit OneDevice(const std::vector<dbif::KeyValue>& keys)
        : MeasurementDatabase(Engine::Sqlite)
    {
        write([&keys](dbif::RecordWriter& writer) {
            writer.findOrAddDevice(writer.findOrAddDie({.lot = "A"}), {.name = "n1"}, keys);
        });
    }
};

/// Counts how often a file is opened.
class OpeningCount
{
public:
    explicit OpeningCount(const std::string& path) : queue_(inotify_init1(IN_NONBLOCK))
    {
        EXPECT_GE(inotify_add_watch(queue_, path.c_str(), IN_OPEN | IN_CLOSE), 0) << path;
    }

    ~OpeningCount() { close(queue_); }

    OpeningCount(const OpeningCount&) = delete;
    OpeningCount& operator=(const OpeningCount&) = delete;

    /// Since the last call. Equal events in a row come as one, so closing is watched as well.
    int take()
    {
        int count = 0;
        alignas(inotify_event) std::array<char, 4096> bytes{};
        const ssize_t size = read(queue_, bytes.data(), bytes.size());
        for (ssize_t i = 0; i < size; i += static_cast<ssize_t>(sizeof(inotify_event))) {
            inotify_event event{};
            std::memcpy(&event, &bytes.at(static_cast<std::size_t>(i)), sizeof event);
            count += (event.mask & IN_OPEN) != 0 ? 1 : 0;
        }
        return count;
    }

private:
    int queue_;
};

TEST(StayingConnected, ReadsTheConnectionsFileOnceForACall)
{
    const test_support::LabDatabase lab(Engine::Sqlite);
    const auto values = [](const std::string& name, const std::string& query) {
        std::vector<std::string> names;
        std::string errors;
        return dbapi::db_get_values_for_keyword_as_text(name, "$DEVNAME", &names, query, &errors);
    };
    dbui_add_connection({"gone", "QSQLITE", "", "", "/no/such/file", "", ""}, false);
    OpeningCount openings(dbui_connections_file());
    EXPECT_TRUE(values("lab", ""));
    EXPECT_EQ(openings.take(), 1);
    EXPECT_TRUE(values("lab", "$LOT=A"));
    EXPECT_FALSE(values("lab", "{{"));
    EXPECT_EQ(openings.take(), 0);
    for (const char* name : {"gone", "unknown"}) {
        EXPECT_FALSE(values(name, ""));
        EXPECT_EQ(openings.take(), 1) << name;
    }
}

TEST(StayingConnected, SeesAnOlderStatePutBackIntoTheFile)
{
    const auto key = [](const std::string& name, double number) {
        return test_support::number_key(name, number, "PHYSICAL");
    };
    const OneDevice older({key("L", 2), key("W", 1)});
    OneDevice lab({key("W", 10), key("L", 20), key("area", 30)});
    test_support::store_connection(lab, "lab");
    EXPECT_EQ(value_of("W") + value_of("L") + value_of("area"), "10;20;30;");

    test_support::copy_content(older.path(), lab.path());
    EXPECT_EQ(value_of("W") + value_of("L"), "1;2;");
    EXPECT_THAT(value_of("area"), HasSubstr("Error: "));
    for (const char* table : {"device_data", "device_column", "device", "die"}) {
        lab.execute(std::string("DELETE FROM ") + table);
    }
    EXPECT_THAT(value_of("W"), HasSubstr("Error: "));
}

TEST(StayingConnected, SeesAnSqliteFileReplacedAndRemoved)
{
    test_support::LabDatabase lab(Engine::Sqlite);
    const std::string path = lab.path();
    lab.connection = dbui::blank_connection(); // a writer's log would stay beside the new file
    EXPECT_EQ(devices(), "d3;lonely;n1;n2;");

    // Another file takes its place, as when a backup is put back.
    const std::string other = lab.folder().file("other.db");
    test_support::run_on_file(path, "VACUUM INTO '" + other + "'");
    test_support::run_on_file(other, "UPDATE device SET name = 'other' WHERE name = 'n1'");
    std::filesystem::rename(other, path);
    EXPECT_EQ(devices(), "d3;lonely;n2;other;");

    std::filesystem::rename(path, other);
    for (int call = 0; call < 2; ++call) {
        EXPECT_THAT(devices(), HasSubstr("The SQLite file \"" + path + "\" does not exist."));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    std::filesystem::rename(other, path);
    EXPECT_EQ(devices(), "d3;lonely;n2;other;");
}

/// Writes one file over another, as `cp` does; a second later than now, so that it cannot share the
/// instant of an earlier change.
void copy_over(const std::string& from, const std::string& to)
{
    namespace fs = std::filesystem;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing);
    fs::last_write_time(to, fs::file_time_type::clock::now() + std::chrono::seconds(1));
}

TEST(StayingConnected, SeesAnSqliteFileOverwritten)
{
    test_support::LabDatabase lab(Engine::Sqlite);
    const std::string path = lab.path();
    lab.connection = dbui::blank_connection();
    EXPECT_EQ(devices(), "d3;lonely;n1;n2;");
    const std::string other = lab.folder().file("other.db");
    test_support::run_on_file(path, "VACUUM INTO '" + other + "'");
    test_support::run_on_file(other, "UPDATE device SET name = 'other' WHERE name = 'n1'");

    copy_over(other, path);
    EXPECT_EQ(devices(), "d3;lonely;n2;other;");

    // What SQLite writes itself, into the log and from there into the file, opens nothing anew.
    const DBIF_Connection kept = *dbapi_get_cached_connection();
    for (const char* sql :
         {"UPDATE device SET modified_time = NULL; PRAGMA journal_mode = WAL",
          "UPDATE device SET name = 'new' WHERE name = 'other'", "PRAGMA wal_checkpoint",
          "UPDATE device SET name = 'other' WHERE name = 'new'"}) {
        test_support::run_on_file(path, sql);
        EXPECT_THAT(devices(), HasSubstr("d3;lonely;n2;"));
    }
    EXPECT_TRUE(kept == *dbapi_get_cached_connection());
}

TEST(StayingConnected, SeesAnSqliteFileOverwrittenBesideItsLog)
{
    test_support::LabDatabase lab(Engine::Sqlite);
    const std::string path = lab.path();
    const std::string other = lab.folder().file("other.db");
    const std::string third = lab.folder().file("third.db");
    for (const std::string& copy : {other, third}) {
        test_support::run_on_file(path, "VACUUM INTO '" + copy + "'");
    }
    const std::string rename = "UPDATE device SET name = 'other' WHERE name = 'n1';";
    test_support::run_on_file(other, rename + "PRAGMA journal_mode = WAL");
    test_support::run_on_file(
        third, rename + "UPDATE device SET name = name; PRAGMA journal_mode = WAL");
    lab.connection = dbui::blank_connection();
    const auto write = [&path](const std::string& more) {
        test_support::run_on_file(path, "UPDATE device SET name = 'new' WHERE name = 'n2'" + more);
    };

    // The whole log stands in the file: it goes with the old connection.
    EXPECT_EQ(devices(), "d3;lonely;n1;n2;");
    write("; PRAGMA wal_checkpoint");
    EXPECT_EQ(devices(), "d3;lonely;n1;new;");
    copy_over(other, path);
    EXPECT_EQ(devices(), "d3;lonely;n2;other;");

    // It does not: whoever opens the file reads both, also when this process saw only the result.
    for (const bool isSeen : {true, false}) {
        write("");
        EXPECT_TRUE(!isSeen || devices() == "d3;lonely;new;other;");
        copy_over(third, path);
        for (int call = 0; call < 2; ++call) {
            EXPECT_THAT(devices(), HasSubstr("was overwritten while it was open")) << isSeen;
        }
        std::filesystem::remove(path + "-wal");
        copy_over(other, path);
        EXPECT_EQ(devices(), "d3;lonely;n2;other;") << isSeen;
    }
}

TEST(StayingConnected, TakesNoEmptyOrSpecialFileForADatabase)
{
    const test_support::TempDirectory folder;
    test_support::write_file(folder.file("data"), "");
    dbui_add_connection({"lab", "QSQLITE", "", "", folder.file("data"), "", ""}, false);
    EXPECT_THAT(devices(), HasSubstr("data\" is empty (0 bytes)."));
    EXPECT_EQ(test_support::read_file(folder.file("data")), "");

    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder.file("pipe"), std::string("/dev/null")}) {
        std::string error;
        EXPECT_FALSE(dbapi::db_create_sqlite_connection("special", path, &error));
        EXPECT_THAT(error, HasSubstr("is no regular file"));
    }
}

/// A server that ends each connection at once, and counts them.
class UnwillingServer
{
public:
    UnwillingServer() : socket_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* any = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(socket_, any, size) + listen(socket_, 8), 0);
        getsockname(socket_, any, &size);
        port = std::to_string(ntohs(address.sin_port));
        thread_ = std::thread([this] {
            for (int caller = 0; (caller = accept(socket_, nullptr, nullptr)) >= 0; close(caller)) {
                ++connections;
            }
        });
    }

    ~UnwillingServer()
    {
        shutdown(socket_, SHUT_RDWR);
        thread_.join();
        close(socket_);
    }

    UnwillingServer(const UnwillingServer&) = delete;
    UnwillingServer& operator=(const UnwillingServer&) = delete;

    std::string port;
    std::atomic<int> connections = 0;

private:
    int socket_;
    std::thread thread_;
};

TEST(StayingConnected, TriesOnceInACallToReachAServer)
{
    const test_support::TempDirectory folder;
    UnwillingServer server;
    const DbuiConnection record("lab", "QMYSQL", "127.0.0.1", server.port, "meas", "u", "p");
    std::string error;
    EXPECT_FALSE(dbui_validate_connection_opens(record, false, &error));
    EXPECT_EQ(server.connections.exchange(0), 1);
    dbui_add_connection(record, false);
    for (int call = 1; call <= 2; ++call) {
        EXPECT_THAT(devices(), HasSubstr("failed to create a valid open database connection"));
        EXPECT_EQ(server.connections, call);
    }
}
} // namespace
