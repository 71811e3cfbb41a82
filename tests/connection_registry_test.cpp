#include "dbapi/db_connections.h"
#include "dbui/connection_registry.h"
#include "dbui/connection_storing.h"

#include "tests/support/box_clicker.h"
#include "tests/support/stored_connections.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

using test_support::stored_lines;

namespace {
const DbuiConnection kA("a", "QSQLITE", "", "", "one", "", "");
const DbuiConnection kOtherA("a", "QSQLITE", "", "", "other", "", "");
const DbuiConnection kB("b", "QMYSQL", "h", "3306", "two", "u", "p");
const DbuiConnection kNameless("", "QSQLITE", "", "", "three", "", "");

class ConnectionRegistry : public testing::Test
{
protected:
    test_support::TempDirectory folder;
    test_support::SignalLog signalLog;
    test_support::BoxClicker boxes;
    std::string error = "left over";
};
} // namespace

TEST_F(ConnectionRegistry, ChangesTheList)
{
    EXPECT_FALSE(dbui_add_connection(kNameless, true, &error));
    EXPECT_EQ(error + signalLog.take() + boxes.take(), "");
    EXPECT_EQ(stored_lines(), "unreadable");

    for (const DbuiConnection& connection : {kA, kB, kA}) {
        EXPECT_TRUE(dbui_add_connection(connection, true, &error));
        EXPECT_EQ(signalLog.take(), "pre changed post ");
    }
    EXPECT_EQ(stored_lines(), "b|QMYSQL|h|3306|two|u|p;a|QSQLITE|||one||;");

    EXPECT_TRUE(dbui_remove_connection(kOtherA, true, &error));
    EXPECT_EQ(signalLog.take(), "");
    EXPECT_TRUE(dbui_update_connection(kB, kOtherA, true, &error));
    EXPECT_EQ(signalLog.take(), "pre changed post pre changed post ");
    EXPECT_TRUE(dbui_remove_connection(kA, true, &error));
    EXPECT_EQ(stored_lines(), "a|QSQLITE|||other||;");

    EXPECT_EQ(error + boxes.take(), "");
    EXPECT_FALSE(dbui_update_connection(kOtherA, kNameless, false, &error));
    EXPECT_EQ(error, "Failed to update connection \"a\".\n");
}

TEST_F(ConnectionRegistry, FindsByExactName)
{
    for (const DbuiConnection& connection : {kB, kA, kOtherA}) {
        dbui_add_connection(connection, false);
    }
    const std::pair<const char*, const char*> found[] = {
        {"a", "a|QSQLITE|||one||"}, {"A", "|QSQLITE|||||"}, {" a", "|QSQLITE|||||"}};
    for (const auto& [name, line] : found) {
        DbuiConnection connection = kB;
        EXPECT_EQ(dbui_find_connection_by_name(name, &connection), line[0] == 'a');
        EXPECT_EQ(test_support::line_of(connection), line);
    }
    std::set<std::string> names = {"left over"};
    dbui_get_connection_names(&names, &error);
    EXPECT_EQ(names, (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(error, "");
}

TEST_F(ConnectionRegistry, StoresANameOnceWhoeverElseStoresItMeanwhile)
{
    // A slot stands for another program: it comes after the name was looked at, and before the
    // lock is taken.
    QObject context;
    QObject::connect(
        dbConnectionNameListener::getInstance().data(),
        &dbConnectionNameListener::preNotifyConnectionNamesChanged, &context, [&context] {
            QObject::disconnect(
                dbConnectionNameListener::getInstance().data(), nullptr, &context, nullptr);
            EXPECT_TRUE(dbui_add_connection(kOtherA, false));
        });
    EXPECT_FALSE(dbapi::db_create_sqlite_connection("a", folder.file("a.db"), &error));
    EXPECT_EQ(
        error, "Could not create the given database connection with name \"a\".\nThe database "
               "connection with that name already exists.\n");

    using dbui::StoreOutcome;
    EXPECT_TRUE(dbui_add_connection(kB, false));
    const DbuiConnection renamed("c", "QMYSQL", "h", "3306", "two", "u", "p");
    const std::pair<dbui::StoreRequest, StoreOutcome> requests[] = {
        {{kA, kB}, StoreOutcome::NameTaken},
        {{renamed, kA}, StoreOutcome::Outdated},
        {{kNameless, kB}, StoreOutcome::Failed},
        {{renamed, kB}, StoreOutcome::Stored}};
    for (const auto& [request, outcome] : requests) {
        EXPECT_EQ(dbui::store_connection(request, &error), outcome);
    }
    EXPECT_EQ(stored_lines(), "a|QSQLITE|||other||;c|QMYSQL|h|3306|two|u|p;");
}

TEST_F(ConnectionRegistry, TakesAnUnreadableFileForEmpty)
{
    test_support::write_file(folder.connections_file(), "no xml");
    std::set<std::string> names = {"left over"};
    DbuiConnection found;
    testing::internal::CaptureStderr();
    dbui_get_connection_names(&names);
    EXPECT_FALSE(dbui_find_connection_by_name("a", &found));
    EXPECT_TRUE(dbui_remove_connection(kA, false));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(names.empty());

    dbui_get_connection_names(&names, &error);
    EXPECT_EQ(
        error, "Failed to open database connections storage file: \"" + folder.connections_file() +
                   "\"!\n");
    EXPECT_TRUE(dbui_add_connection(kA, false));
    EXPECT_EQ(stored_lines(), "a|QSQLITE|||one||;");
}

TEST_F(ConnectionRegistry, ReportsAFailedSave)
{
    dbui_add_connection(kA, false);
    signalLog.take();
    // A folder in the place of the lock lets the file be read, but not saved.
    std::filesystem::remove(folder.connections_file() + ".lock");
    std::filesystem::create_directory(folder.connections_file() + ".lock");
    const std::string failure = "Failed to save database connections storage file: \"" +
                                folder.connections_file() + "\"!\n";

    using Operation = bool (*)(bool, std::string*);

    struct Case
    {
        std::string title;
        std::string signalsSent;
        Operation operation;
    };

    const Case cases[] = {
        {"Add Connection", "pre post ",
         [](bool i, std::string* e) {
             return dbui_add_connection(kB, i, e);
         }},
        {"Remove Connection", "pre post ",
         [](bool i, std::string* e) {
             return dbui_remove_connection(kA, i, e);
         }},
        {"Edit Connection", "pre post pre post ", [](bool i, std::string* e) {
             return dbui_update_connection(kA, kB, i, e);
         }}};
    for (const auto& [title, signalsSent, operation] : cases) {
        EXPECT_FALSE(operation(true, &error));
        EXPECT_EQ(error, failure) << title;
        EXPECT_EQ(boxes.take(), "critical: " + title + ": " + failure + "[OK]");
        EXPECT_EQ(signalLog.take(), signalsSent) << title;

        testing::internal::CaptureStderr();
        EXPECT_FALSE(operation(false, nullptr));
        EXPECT_EQ(testing::internal::GetCapturedStderr() + boxes.take(), failure) << title;
        signalLog.take();
    }
    EXPECT_EQ(stored_lines(), "a|QSQLITE|||one||;");
}

TEST_F(ConnectionRegistry, ReportsAFolderThatCannotBeMade)
{
    test_support::write_file(folder.file("plain"), "");
    const std::string below = folder.file("plain/deep");
    setenv("VANTO_DB_CONNECTIONS_DIRECTORY", below.c_str(), 1);
    const std::string failure = "Failed to create directory path \"" + below + "\"!\n";
    EXPECT_FALSE(dbui_add_connection(kA, true, &error));
    EXPECT_EQ(boxes.take(), "critical: Add Connection: " + failure + "[OK]");
    EXPECT_EQ(signalLog.take(), "pre ");
    EXPECT_FALSE(dbui_update_connection(kA, kB, true, &error));
    EXPECT_EQ(boxes.take(), "critical: Edit Connection: " + failure + "[OK]");
    EXPECT_EQ(signalLog.take(), "pre ");
    EXPECT_TRUE(dbui_remove_connection(kA, true, &error));
    EXPECT_EQ(signalLog.take() + boxes.take(), "");
}
