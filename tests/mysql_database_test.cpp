#include "dbui/connection_check.h"
#include "dbui/mysql_database.h"

#include "tests/support/box_clicker.h"
#include "tests/support/mariadb_server.h"

#include <QSqlDatabase>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {
class MySqlDatabase : public testing::Test
{
protected:
    [[nodiscard]] DbuiConnection record(const std::string& of, const std::string& password) const
    {
        const std::string port = std::to_string(server.port());
        return {"lab", "QMYSQL", server.host(), port, of, server.user(), password};
    }

    MariaDbServer& server = MariaDbServer::instance();
    const MariaDbDatabase database{MariaDbDatabase::Initially::Missing};
    const std::string name = database.name();
    const DbuiConnection missing = record(name, server.password());
    std::string error = "left over";
};
} // namespace

TEST_F(MySqlDatabase, IsCreatedWithoutAskingWhenUnknown)
{
    EXPECT_FALSE(dbui_test_connection(missing, false, &error));
    EXPECT_THAT(error, HasSubstr("Unknown database"));

    test_support::BoxClicker boxes;
    EXPECT_TRUE(dbui_is_connection_invalid_due_to_mysql_database_unknown(missing));
    EXPECT_TRUE(dbui_validate_connection_opens(missing, false, &error));
    EXPECT_EQ(error + boxes.take(), "");
    EXPECT_FALSE(dbui_is_connection_invalid_due_to_mysql_database_unknown(missing));
    EXPECT_FALSE(QSqlDatabase::contains()) << "the default connection was left behind";
}

TEST_F(MySqlDatabase, IsCreatedOnlyOnYes)
{
    const std::string question =
        "question: Error: MySQL database not found.: The MySQL Database with the given name '" +
        name +
        "' could not be found on the MySQL server @ '127.0.0.1'.\n\nWould you like VANTO "
        "to attempt to create the MySQL database with given name '" +
        name + "' for you?\n[&Yes*][&No]";
    {
        test_support::BoxClicker boxes(QMessageBox::No);
        EXPECT_FALSE(dbui_validate_connection_opens(missing, true, &error));
        EXPECT_EQ(error + boxes.take(), question);
    }
    test_support::BoxClicker boxes(QMessageBox::Yes);
    EXPECT_TRUE(dbui_validate_connection_opens(missing, true, &error));
    EXPECT_EQ(
        boxes.take(),
        question + "information: Create MySQL database was successful: The MySQL database '" +
            name + "' was created and a valid database connection was opened successfully.\n[OK]");
}

TEST_F(MySqlDatabase, MayHaveAnyName)
{
    const std::pair<const char*, const char*> names[] = {
        {"order", "`order`"},
        {"it's \"Meas\" 2026.a - x", "`it's \"Meas\" 2026.a - x`"},
        {"a`; DROP DATABASE mysql; --", "`a``; DROP DATABASE mysql; --`"}};
    for (const auto& [odd, quoted] : names) {
        EXPECT_TRUE(dbui_validate_connection_opens(record(odd, server.password()), false, &error))
            << error;
        server.execute(std::string("DROP DATABASE ") + quoted);
    }
}

TEST_F(MySqlDatabase, IsReachedAsTheRecordSays)
{
    ASSERT_TRUE(dbui_validate_connection_opens(missing, false, &error)) << error;
    const auto outcome = [&](const std::string& driver, const std::string& host,
                             const std::string& port) {
        const DbuiConnection tried(
            "lab", driver, host, port, name, server.user(), server.password());
        return dbui_test_connection(tried, false, &error) ? "it opens" : error;
    };
    const std::string port = std::to_string(server.port());
    const std::tuple<const char*, const char*, std::string, const char*> cases[] = {
        {"QMYSQL", "127.0.0.1", port, "it opens"},
        {"QMYSQL", "127.0.0.1", "+" + port, "it opens"},
        {"QMYSQL", "127.0.0.1", "1", "Can't connect to server on '127.0.0.1'"},
        {"QMYSQL", "no.such.invalid", port, "Unknown server host 'no.such.invalid'"},
        {"QPSQL", "127.0.0.1", port,
         "The database driver \"QPSQL\" is not known. The drivers are "
         "SQLITE and MYSQL."}};
    for (const auto& [driver, host, text, says] : cases) {
        EXPECT_THAT(outcome(driver, host, text), HasSubstr(says)) << driver << host << text;
    }
    // Both stand for 3306, whoever may listen there.
    EXPECT_EQ(outcome("QMYSQL", "127.0.0.1", ""), outcome("QMYSQL", "127.0.0.1", "no number"));
}

TEST_F(MySqlDatabase, IsNotCreatedWhereTheServerRefuses)
{
    const DbuiConnection refused = record(name, "wrong Pa55");
    EXPECT_FALSE(dbui_is_connection_invalid_due_to_mysql_database_unknown(refused));
    EXPECT_FALSE(dbui_validate_connection_opens(refused, false, &error));
    EXPECT_THAT(error, HasSubstr("Failed to open valid database connection.\n"));
    EXPECT_THAT(error, testing::Not(HasSubstr("wrong Pa55")));
    EXPECT_FALSE(dbui_create_mysql_database_for_connection(refused, &error));
    EXPECT_EQ(
        error, "Failed to create a connection to the MySQL database server at given hostname "
               "'127.0.0.1'.\n");

    const DbuiConnection tooLong = record(std::string(65, 'x'), server.password());
    EXPECT_FALSE(dbui_create_mysql_database_for_connection(tooLong, &error));
    EXPECT_EQ(
        error, "Create MySQL Database Error: Failed to create the MySQL database and open a valid "
               "database connection.\nIncorrect database name '" +
                   std::string(65, 'x') + "'\n");
}
