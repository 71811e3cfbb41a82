#include "dbapi/db_connections.h"

#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbui/connection_check.h"
#include "dbui/connection_record.h"
#include "dbui/connection_registry.h"
#include "dbui/connection_storing.h"
#include "dbui/connections_file.h"
#include "dbui/record_fault.h"

namespace dbapi {
namespace {
constexpr const char* kNameTaken = "The database connection with that name already exists.\n";
constexpr const char* kNotUpdated =
    "Failed to update the database connections configuration file.\n";

bool fail(std::string* errors, const std::string& heading, const std::string& reason)
{
    dbif::deliver_error(errors, heading + reason);
    return false;
}

std::string driver_name(const std::string& given)
{
    const std::string driver = dbif::upper_case(dbif::trimmed_left(given));
    return driver == "MYSQL" || driver == "SQLITE" ? "Q" + driver : driver;
}
} // namespace

bool db_create_connection(
    const std::string& driver,
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors)
{
    dbif::clear_error(errors);
    const DbuiConnection record(
        dbif::trimmed(name), driver_name(driver), dbif::trimmed(host), dbif::trimmed(port),
        dbif::trimmed(database), dbif::trimmed(user), dbif::trimmed(password));
    const std::string heading = "Could not create the given database connection with name \"" +
                                record.get_connectionName() + "\".\n";
    std::string reason;
    if (!dbui_create_connections_file_if_not_found(&reason)) {
        return fail(errors, heading, reason);
    }
    DbuiConnection stored;
    if (dbui_find_connection_by_name(record.get_connectionName(), &stored)) {
        return fail(errors, heading, kNameTaken);
    }
    // Before a database is made for a connection that cannot be stored.
    if (reason = dbui::fault_of_record(record); !reason.empty()) {
        return fail(errors, heading, reason);
    }
    if (!dbui::fault_of_saving().empty()) {
        return fail(errors, heading, kNotUpdated);
    }
    if (!dbui_validate_connection_opens(record, false, &reason)) {
        return fail(errors, heading, reason);
    }
    // Another program may have stored the name while the database was opened. A damaged file is
    // replaced, as every call does that adds without a dialog.
    switch (dbui::store_connection({record, std::nullopt, true}, &reason)) {
    case dbui::StoreOutcome::Stored:
        return true;
    case dbui::StoreOutcome::NameTaken:
        return fail(errors, heading, kNameTaken);
    default:
        return fail(errors, heading, kNotUpdated);
    }
}

bool db_create_mysql_connection(
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors)
{
    return db_create_connection("QMYSQL", name, database, host, user, password, port, errors);
}

bool db_create_sqlite_connection(
    const std::string& name,
    const std::string& file,
    std::string* errors)
{
    return db_create_connection("QSQLITE", name, file, "", "", "", "", errors);
}

bool db_remove_connection(const std::string& name, std::string* errors)
{
    dbif::clear_error(errors);
    const std::string trimmedName = dbif::trimmed(name);
    const std::string heading =
        "Could not delete the given database connection name \"" + trimmedName + "\".\n";
    DbuiConnection record;
    if (!dbui_find_connection_by_name(trimmedName, &record)) {
        return fail(errors, heading, "The database connection does not exist.\n");
    }
    std::string reason;
    if (!dbui_remove_connection(record, false, &reason)) {
        return fail(errors, heading, kNotUpdated);
    }
    return true;
}

void db_get_connections(std::set<std::string>* names)
{
    std::string ignored;
    dbui_get_connection_names(names, &ignored);
}
} // namespace dbapi
