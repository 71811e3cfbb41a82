#include "tools/dbapi/stored_names.h"

#include "dbapi/text_rules.h"
#include "dbif/error_text.h"
#include "dbif/host_string.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_file.h"
#include "dbui/connections_path.h"

#include "tools/dbapi/command_failure.h"
#include "tools/dbapi/nearest_text.h"

#include <filesystem>
#include <system_error>

namespace dbapi::tool {
std::vector<DbuiConnection> stored_connections()
{
    std::vector<DbuiConnection> connections;
    std::string error;
    dbui_get_connections_from_file(&connections, &error);
    std::error_code ignored;
    if (!error.empty() && std::filesystem::exists(dbui_connections_file(), ignored)) {
        throw CommandFailure(
            ExitCode::Connection,
            dbif::trimmed(error) + "\nMake it readable for you, or correct it: it has to be XML. "
                                   "Moved away, it is begun anew by dbapi connection add.");
    }
    return connections;
}

std::set<std::string> stored_names()
{
    std::set<std::string> names;
    for (const DbuiConnection& connection : stored_connections()) {
        names.insert(connection.get_connectionName());
    }
    return names;
}

DbuiConnection stored_connection(const std::string& name)
{
    DbuiConnection record;
    if (dbui_find_connection_by_name(name, &record)) {
        return record;
    }
    const std::set<std::string> names = stored_names();
    std::string text = "there is no stored connection " + dbapi::quoted(name) + "." +
                       suggestion(nearest_texts(name, names, 3));
    if (names.empty()) {
        text += " None is stored yet: dbapi connection add NAME --sqlite FILE stores one.";
    } else {
        text += " Stored are:";
        for (const std::string& stored : names) {
            text += "\n  " + stored;
        }
    }
    throw CommandFailure(ExitCode::Connection, text);
}

DBIF_Connection open_stored(const std::string& name)
{
    stored_connection(name);
    DBIF_Connection connection = dbui::blank_connection();
    std::string error;
    if (!dbui_make_dbif_connection_object_by_name(name, &connection, &error)) {
        throw CommandFailure(
            ExitCode::Data, "the connection " + dbapi::quoted(name) +
                                " opens, but its database cannot be used. " + dbif::trimmed(error));
    }
    if (!connection.isValid()) {
        throw CommandFailure(
            ExitCode::Connection,
            "the connection " + dbapi::quoted(name) + " does not open. " +
                dbif::trimmed(convert_sql_error_to_string(connection.lastError()).str()) +
                "\nWhat keeps it from opening: dbapi connection test " + name);
    }
    return connection;
}
} // namespace dbapi::tool
