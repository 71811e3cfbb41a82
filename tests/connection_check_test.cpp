#include "dbui/connection_check.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/message_boxes.h"

#include "dbui_dialogs/widget_message_boxes.h"
#include "tests/support/box_clicker.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

namespace {
class ConnectionCheck : public testing::Test
{
protected:
    [[nodiscard]] DbuiConnection record(const std::string& file) const
    {
        return {"lab", "QSQLITE", "", "no number", folder.file(file), "", ""};
    }

    [[nodiscard]] bool exists(const std::string& file) const
    {
        return std::filesystem::exists(folder.file(file));
    }

    test_support::TempDirectory folder;
    test_support::BoxClicker boxes;
    std::string error = "left over";
};
} // namespace

TEST_F(ConnectionCheck, CreatesAnSqliteFile)
{
    EXPECT_TRUE(dbui_validate_connection_opens(record("valid"), true, &error));
    EXPECT_TRUE(dbui_test_connection(record("silent"), false, &error));
    EXPECT_EQ(error + boxes.take(), "");
    EXPECT_TRUE(exists("silent") && exists("valid"));

    EXPECT_TRUE(dbui_test_connection(record("shown"), true, &error));
    EXPECT_EQ(
        boxes.take(), "information: Check Database Connection Success: The open database "
                      "connection test was successful[OK]");
}

TEST_F(ConnectionCheck, TellsWhatDidNotOpen)
{
    test_support::run_on_file(folder.file("foreign"), "CREATE TABLE recipes (name)");

    const std::string start =
        "Check Database Connection Error: Failed to open valid database connection.\n";
    for (const DbuiConnection& wrong :
         {record("no/folder"), record("foreign"),
          DbuiConnection("lab", "FOO", "", "", "", "", "")}) {
        EXPECT_FALSE(dbui_test_connection(wrong, false, &error));
        const std::string message = error;
        EXPECT_EQ(message.substr(0, start.size()), start);
        EXPECT_GT(message.size(), start.size()) << "no detail";

        EXPECT_FALSE(dbui_test_connection(wrong, true, &error));
        EXPECT_EQ(boxes.take(), "warning: Check Database Connection Error: " + message + "[OK]");
        EXPECT_FALSE(dbui_validate_connection_opens(wrong, true, &error));
        EXPECT_EQ(
            error, "Error occurred, Database Connection lab's information has failed to create and "
                   "open a valid database connection.\n" +
                       message);
        EXPECT_EQ(boxes.take(), "critical: Database Connection: " + error + "[OK]");
    }
}

TEST_F(ConnectionCheck, IsSilentWhereNobodyRegisteredBoxes)
{
    dbui::set_message_boxes(nullptr);
    EXPECT_TRUE(dbui_test_connection(record("valid"), true, &error));
    EXPECT_EQ(error, "");
    EXPECT_FALSE(dbui_validate_connection_opens(record("no/folder"), true, &error));
    EXPECT_NE(error, "");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dbui_test_connection_by_name("lab", true));
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "Check Database Connection Error: The database connection name \"lab\" was not found.\n");
    EXPECT_EQ(boxes.take(), "");
    dbui::register_message_boxes();
}

TEST_F(ConnectionCheck, GoesByName)
{
    const std::string missing = "The database connection name \"lab\" was not found.";
    DBIF_Connection connection = dbui::blank_connection();
    EXPECT_FALSE(dbui_make_dbif_connection_object_by_name("lab", &connection, &error));
    EXPECT_EQ(error, missing + "\n");
    EXPECT_FALSE(dbui_test_connection_by_name("lab", false, &error));
    EXPECT_EQ(error, "Check Database Connection Error: " + missing + "\n");
    EXPECT_FALSE(dbui_test_connection_by_name("lab", true, &error));
    EXPECT_EQ(boxes.take(), "warning: Check Database Connection Error: " + missing + "[OK]");

    // For data, a missing file stays missing.
    dbui_add_connection(record("new"), false);
    EXPECT_TRUE(dbui_make_dbif_connection_object_by_name("lab", &connection, &error));
    EXPECT_FALSE(connection.isValid() || exists("new"));
    EXPECT_TRUE(dbui_test_connection_by_name("lab", false, &error));
    EXPECT_TRUE(exists("new"));
    EXPECT_TRUE(dbui_make_dbif_connection_object_by_name("lab", &connection, &error));
    EXPECT_TRUE(connection.isValid());
}
