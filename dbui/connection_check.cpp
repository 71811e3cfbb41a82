#include "dbui/connection_check.h"

#include "dbif/host/error_text.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/message_boxes.h"
#include "dbui/mysql_database.h"

namespace {
constexpr const char* kErrorTitle = "Check Database Connection Error";

/// Shows the failure, or else delivers `unseen`.
void warn(bool interactive, const std::string& shown, const std::string& unseen, std::string* error)
{
    if (dbui::shows_boxes(interactive)) {
        dbui::show_warning(kErrorTitle, shown);
    } else {
        dbif::deliver_error(error, unseen);
    }
}

bool is_creation_wanted(const DbuiConnection& record)
{
    const std::string database = record.get_databaseName();
    return dbui::ask_yes_or_no(
        "Error: MySQL database not found.",
        "The MySQL Database with the given name '" + database +
            "' could not be found on the MySQL server @ '" + record.get_hostname() + "'.\n\n" +
            "Would you like VANTO to attempt to create the MySQL database with given name '" +
            database + "' for you?\n");
}

bool create_database(const DbuiConnection& record, bool interactive, std::string* error)
{
    const bool created = dbui_create_mysql_database_for_connection(record, error);
    if (created && dbui::shows_boxes(interactive)) {
        dbui::show_information(
            "Create MySQL database was successful",
            "The MySQL database '" + record.get_databaseName() +
                "' was created and a valid database connection was opened successfully.\n");
    }
    return created;
}

/// Opens the record's database; empty when it opened, otherwise the message that says why not.
std::string try_to_open(const DbuiConnection& record, DBIF_Connection* connection)
{
    std::string detail;
    const bool made = dbui_make_dbif_connection_object(record, connection, &detail);
    if (connection->isValid()) {
        return {};
    }
    if (made) {
        detail = convert_sql_error_to_string(connection->lastError()).str();
    }
    return "Check Database Connection Error: Failed to open valid database connection.\n" + detail;
}
} // namespace

bool dbui_test_connection(const DbuiConnection& record, bool interactive, std::string* error)
{
    dbif::clear_error(error);
    DBIF_Connection connection = dbui::blank_connection();
    const std::string message = try_to_open(record, &connection);
    if (message.empty()) {
        if (dbui::shows_boxes(interactive)) {
            dbui::show_information(
                "Check Database Connection Success",
                "The open database connection test was successful");
        }
        return true;
    }
    warn(interactive, message, message, error);
    return false;
}

bool dbui_test_connection_by_name(const std::string& name, bool interactive, std::string* error)
{
    dbif::clear_error(error);
    DbuiConnection record;
    if (dbui_find_connection_by_name(name, &record)) {
        return dbui_test_connection(record, interactive, error);
    }
    const std::string message = "The database connection name \"" + name + "\" was not found.";
    warn(interactive, message, "Check Database Connection Error: " + message + "\n", error);
    return false;
}

bool dbui_validate_connection_opens(
    const DbuiConnection& record,
    bool interactive,
    std::string* error)
{
    dbif::clear_error(error);
    DBIF_Connection connection = dbui::blank_connection();
    std::string message = try_to_open(record, &connection);
    if (message.empty()) {
        return true;
    }
    // The error of the one attempt decides, so that a server that does not answer is waited for
    // once.
    if (dbui::is_database_unknown(record, connection)) {
        if (dbui::shows_boxes(interactive) && !is_creation_wanted(record)) {
            return false;
        }
        if (create_database(record, interactive, &message)) {
            return true;
        }
    }
    dbui::report_failure(
        interactive, "Database Connection",
        "Error occurred, Database Connection " + record.get_connectionName() +
            "'s information has failed to create and open a valid database connection.\n" + message,
        error);
    return false;
}
