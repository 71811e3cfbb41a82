#include "dbui/connection_open.h"
#include "dbui/diagnosis/connection_diagnosis.h"

#include "tests/support/child_process.h"
#include "tests/support/mariadb_server.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/temp_directory.h"

#include <QVariant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {
using testing::HasSubstr;
using testing::Not;

/// The outcome of each layer by its first letter, then what was not all right, a line each.
std::string diagnosis_of(const DbuiConnection& record)
{
    std::string outcomes;
    std::string faults;
    for (const dbui::DiagnosisStep& step : dbui::diagnose_connection(record)) {
        outcomes += name_of(step.outcome)[0];
        if (!step.advice.empty()) {
            faults +=
                std::string("\n") + name_of(step.layer) + ": " + step.detail + "\n" + step.advice;
        }
    }
    return outcomes + faults;
}

void make_schema(const DbuiConnection& record)
{
    DBIF_Connection connection = dbui::blank_connection();
    std::string error;
    ASSERT_TRUE(dbui_make_dbif_connection_object(record, &connection, &error)) << error;
}

class ConnectionDiagnosis : public testing::Test
{
protected:
    [[nodiscard]] DbuiConnection record(const std::string& file) const
    {
        return {"lab", "QSQLITE", "", "", folder.file(file), "", ""};
    }

    [[nodiscard]] std::string content(const std::string& file) const
    {
        const std::string path = folder.file(file);
        return std::filesystem::is_regular_file(path) ? test_support::read_file(path) : "none";
    }

    test_support::TempDirectory folder;
};

TEST_F(ConnectionDiagnosis, FindsTheFaultOfAFile)
{
    make_schema(record("good"));
    make_schema(record("newer"));
    test_support::run_on_file(folder.file("newer"), "UPDATE database_info SET schema_version = 99");
    make_schema(record("half"));
    test_support::run_on_file(folder.file("half"), "DELETE FROM database_info");
    test_support::run_on_file(folder.file("foreign"), "CREATE TABLE recipes (name)");
    test_support::write_file(folder.file("empty"), "");
    test_support::write_file(folder.file("text"), std::string(200, '.'));
    std::filesystem::create_directory(folder.file("folder"));

    const std::pair<const char*, std::string> files[] = {
        {"good", "oooooooo"},
        {"empty", "oofsssss\nfile: \"" + folder.file("empty") +
                      "\" is empty (0 bytes)\nPut the file back from a backup. Adding a "
                      "connection to an empty file makes an empty database."},
        {"no/file", "ofssssss\nfolder: there is no folder \"" + folder.file("no") +
                        "\"\nCorrect the path, or connect the drive that holds it."},
        {"none", "oofsssss\nfile: there is no file \"" + folder.file("none") +
                     "\"\nPut the file back or correct the path. Adding a connection to a file "
                     "that does not exist makes an empty database."},
        {"folder", "oofsssss\nfile: \"" + folder.file("folder") +
                       "\" is no ordinary file\nName the database file itself."},
        {"text", "ooofssss\ndatabase: The SQLite file \"" + folder.file("text") +
                     "\" does not open: file is not a database.\nThe file is something else, or it "
                     "is encrypted. Name an SQLite database or a file that does not exist yet."},
        {"foreign", "ooooofss\nschema: there are tables, but not those of measurements\nThe "
                    "database belongs to another program. Name an empty or a new database."},
        {"half", "ooooofss\nschema: the measurement tables are incomplete: their creation was "
                 "interrupted\nRemove the database and create it again; it holds no data yet."},
        {"newer",
         "ooooofss\nschema: measurement tables of version 99; this program reads versions up "
         "to 1\nUpdate this program."}};
    for (const auto& [file, diagnosis] : files) {
        const std::string before = content(file);
        EXPECT_EQ(diagnosis_of(record(file)), diagnosis) << file;
        EXPECT_EQ(content(file), before) << file << " was changed";
    }

    EXPECT_FALSE(std::filesystem::exists(folder.file("none")));
    EXPECT_EQ(
        diagnosis_of({"lab", "FOO", "", "", "x", "", ""}),
        "f\nrecord: the database driver \"FOO\" is not there\nThe drivers are QSQLITE, for a file, "
        "and QMYSQL, for a server.");
    EXPECT_EQ(diagnosis_of({"lab", "QSQLITE", "", "", "", "", ""}).substr(0, 8), "fsssssss");
}

TEST_F(ConnectionDiagnosis, FindsRowsThatGotLost)
{
    make_schema(record("torn"));
    std::string bytes = content("torn");
    constexpr std::size_t kPage = 4096;
    constexpr char kRowsOfTable = 0x0D;
    std::size_t page = kPage;
    while (page + kPage < bytes.size() && !(bytes[page] == kRowsOfTable && bytes[page + 4] > 1)) {
        page += kPage;
    }
    // One row less on the page; every statement still runs.
    --bytes.at(page + 4);
    test_support::write_file(folder.file("torn"), bytes);
    EXPECT_NE(diagnosis_of(record("torn")).find("the file is damaged: "), std::string::npos);
}

TEST_F(ConnectionDiagnosis, TellsWhoMayOnlyRead)
{
    namespace fs = std::filesystem;
    for (const char* file : {"log.db", "plain.db"}) {
        make_schema(record(file));
    }
    test_support::run_on_file(folder.file("plain.db"), "PRAGMA journal_mode = DELETE");
    for (const char* file : {"log.db", "plain.db"}) {
        fs::permissions(folder.file(file), fs::perms(0444));
    }
    fs::permissions(folder.path(), fs::perms(0555));
    const int status = test_support::status_of(test_support::start_child([this] {
        test_support::become_nobody();
        const std::string plain = diagnosis_of(record("plain.db"));
        const std::string log = diagnosis_of(record("log.db"));
        const bool isRight = plain.starts_with("owooooow\nfolder: you may not write") &&
                             log.starts_with("owofssss") && log.ends_with("mode = DELETE'.");
        std::cerr << (isRight ? "" : plain + log);
        return isRight;
    }));
    fs::permissions(folder.path(), fs::perms(0755));
    EXPECT_EQ(status, 0);
}

TEST_F(ConnectionDiagnosis, StopsWhenNobodyListensAnyMore)
{
    make_schema(record("lab.db"));
    std::size_t heard = 0;
    const auto steps = dbui::diagnose_connection(
        record("lab.db"), [&heard](const auto& /*step*/) { return ++heard < 3; });
    EXPECT_EQ(heard, 3U);
    ASSERT_EQ(steps.size(), 8U);
    EXPECT_EQ(steps[3].outcome, dbui::DiagnosisStep::Outcome::Skipped);
}

/// A port of this machine that answers with a line and hangs up.
class OtherServer
{
public:
    OtherServer() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        // NOLINTBEGIN(cppcoreguidelines-pro-type-cstyle-cast)
        bind(socket_, (const sockaddr*)&address_, size);
        getsockname(socket_, (sockaddr*)&address_, &size);
        // NOLINTEND(cppcoreguidelines-pro-type-cstyle-cast)
        listen(socket_, 4);
        thread_ = std::thread([this] {
            for (int client = 0; (client = accept(socket_, nullptr, nullptr)) >= 0;) {
                constexpr std::string_view kGreeting = "SSH-2.0-Other\r\n";
                EXPECT_GT(send(client, kGreeting.data(), kGreeting.size(), MSG_NOSIGNAL), 0);
                close(client);
            }
        });
    }

    ~OtherServer()
    {
        shutdown(socket_, SHUT_RDWR);
        thread_.join();
        close(socket_);
    }

    OtherServer(const OtherServer&) = delete;
    OtherServer& operator=(const OtherServer&) = delete;

    [[nodiscard]] std::string port() const { return std::to_string(ntohs(address_.sin_port)); }

private:
    int socket_;
    sockaddr_in address_ = {};
    std::thread thread_;
};

class MySqlConnectionDiagnosis : public testing::Test
{
protected:
    [[nodiscard]] DbuiConnection record(
        const std::string& user,
        const std::string& password,
        const std::string& port = std::to_string(MariaDbServer::instance().port()),
        const std::string& host = "127.0.0.1") const
    {
        return {"lab", "QMYSQL", host, port, database.name(), user, password};
    }

    MariaDbServer& server = MariaDbServer::instance();
    const MariaDbDatabase database;
};

TEST_F(MySqlConnectionDiagnosis, FindsTheFaultOfTheWay)
{
    const std::string user = server.user();
    const std::string password = server.password();
    const OtherServer other;
    const std::string nobody = "ofssssssss\nhost name: \"no.such.invalid\": ";
    EXPECT_THAT(diagnosis_of(record(user, password, "", "no.such.invalid")), HasSubstr(nobody));
    EXPECT_EQ(
        diagnosis_of(record(user, password, "1")),
        "oofsssssss\nport: nothing listens at port 1\nCheck that the server runs, that this is its "
        "port, and that it accepts connections from other machines (its setting bind-address).");
    EXPECT_THAT(
        diagnosis_of(record(user, password, other.port())),
        testing::StartsWith(
            "oofsssssss\nport: port " + other.port() +
            " takes connections, but does not answer like a MySQL server: "));
    EXPECT_EQ(
        diagnosis_of(record(user, "Wr0ng")),
        "ooofssssss\nlogin: Access denied for user 'dbapi_tester'@'127.0.0.1' (using password: "
        "YES)\nCheck the user and the password. The account must also be allowed to come from this "
        "machine, and must not require TLS.");
    EXPECT_EQ(
        diagnosis_of(record(user, password, "70000")),
        "fsssssssss\nrecord: there is no port 70000\nPorts are numbers from 1 to 65535.");
    EXPECT_THAT(
        diagnosis_of(record(user, password, "3306x", "no.such.invalid")),
        HasSubstr("the port \"3306x\" is no number, so 3306 is used"));
    EXPECT_THAT(
        diagnosis_of(record(user, password, "+" + std::to_string(server.port()))),
        testing::StartsWith("oooooooos"));
}

TEST_F(MySqlConnectionDiagnosis, FindsMissingRightsAndNamesTheGrant)
{
    const std::string account = database.name() + "@127.0.0.1";
    const std::string target =
        " ON `" + database.name() + "`.* TO '" + database.name() + "'@'127.0.0.1'";
    const DbuiConnection own = record(database.name(), "Pa55");
    const std::string all = "GRANT SELECT, INSERT, UPDATE, CREATE, INDEX, CREATE VIEW, CREATE "
                            "TEMPORARY TABLES" +
                            target;
    server.execute("CREATE USER " + account + " IDENTIFIED BY 'Pa55'");
    EXPECT_EQ(
        diagnosis_of(own), "oooooofsss\ndatabase: Access denied for user '" + database.name() +
                               "'@'127.0.0.1' to database '" + database.name() +
                               "'\nAsk the server's administrator for: " + all);

    server.execute("GRANT SELECT" + target);
    EXPECT_THAT(
        diagnosis_of(own),
        testing::StartsWith("oooooooosw\nwriting: the data can only be read: CREATE command "
                            "denied to user"));
    // What the advice asks for is enough to make the tables and to write.
    server.execute("REVOKE SELECT" + target.substr(0, target.find(" TO ")) + " FROM " + account);
    server.execute(all);
    EXPECT_EQ(diagnosis_of(own), "ooooooooso");
    make_schema(own);
    EXPECT_EQ(diagnosis_of(own), "oooooooooo");

    server.execute("REVOKE ALL PRIVILEGES, GRANT OPTION FROM " + account);
    server.execute("GRANT SELECT" + target);
    const std::string reader = diagnosis_of(own);
    EXPECT_THAT(
        reader, testing::StartsWith("ooooooooww\nreading: all tables can be read, but no "
                                    "temporary table can be made"));
    EXPECT_THAT(reader, HasSubstr("GRANT SELECT, CREATE TEMPORARY TABLES" + target));
    EXPECT_THAT(reader, HasSubstr("writing: the data can only be read: UPDATE command denied"));
    EXPECT_THAT(reader, Not(HasSubstr("Pa55")));
    server.execute("DROP USER " + account);

    server.execute("DROP DATABASE " + database.name());
    EXPECT_THAT(
        diagnosis_of(record(server.user(), server.password())),
        testing::StartsWith(
            "oooooofsss\ndatabase: Unknown database '" + database.name() +
            "'\nCorrect the name, or create the database: adding a connection to it does, where the "
            "account may. Ask the server's administrator for: GRANT SELECT, INSERT, UPDATE, CREATE"));
}

TEST_F(MySqlConnectionDiagnosis, LeavesNothingBehind)
{
    const DbuiConnection own = record(server.user(), server.password());
    make_schema(own);
    EXPECT_EQ(diagnosis_of(own), "oooooooooo");
    DBIF_Connection connection = dbui::blank_connection();
    ASSERT_TRUE(dbui_make_dbif_connection_object(own, &connection));
    QSqlQuery query =
        connection.query(QStringLiteral("SELECT writes FROM database_info"), 0, "", 0);
    ASSERT_TRUE(query.next());
    EXPECT_EQ(query.value(0).toInt(), 0);
}
} // namespace
