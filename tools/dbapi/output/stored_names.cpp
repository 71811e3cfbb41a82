#include "tools/dbapi/output/stored_names.h"

#include "dbapi/call/connection_access.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/nearest_text.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_file.h"
#include "dbui/connections_path.h"

#include <algorithm>
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
        throw ConnectionFailure(
            ConnectionFailure::Reason::NoConnection,
            dbif::trimmed(error) +
                "\nMake it readable for yourself, or correct it: it has to be XML. "
                "If you move it away, dbapi connection add starts a new one.");
    }
    std::stable_sort(
        connections.begin(), connections.end(),
        [](const DbuiConnection& a, const DbuiConnection& b) {
            return a.get_connectionName() < b.get_connectionName();
        });
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

namespace {
[[noreturn]] void fail_for_unknown(const std::string& name)
{
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
    throw ConnectionFailure(ConnectionFailure::Reason::NoConnection, text);
}
} // namespace

DbuiConnection stored_connection(const std::string& name)
{
    DbuiConnection record;
    if (!dbui_find_connection_by_name(name, &record)) {
        fail_for_unknown(name);
    }
    return record;
}

DbuiConnection known_connection(const std::string& name)
{
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        fail_for_unknown(name);
    }
    return record;
}

DBIF_Connection open_known(const std::string& name)
{
    const DbuiConnection record = known_connection(name);
    const bool isFile = is_unnamed_file(record);
    DBIF_Connection connection = dbui::blank_connection();
    std::string error;
    const auto missingFile = isFile ? dbif::MissingFile::ReadOnly : dbif::MissingFile::Fail;
    if (!dbui::open_connection(record, missingFile, &connection, &error)) {
        throw ConnectionFailure(
            ConnectionFailure::Reason::NoDatabase, "the connection " + dbapi::quoted(name) +
                                                       " opens, but its database cannot be used. " +
                                                       dbif::trimmed(error));
    }
    if (!connection.isValid()) {
        throw ConnectionFailure(
            ConnectionFailure::Reason::NoConnection,
            "the connection " + dbapi::quoted(name) + " does not open. " +
                dbif::trimmed(convert_sql_error_to_string(connection.lastError()).str()) +
                (isFile ? "" : "\nWhat keeps it from opening: dbapi connection test " + name));
    }
    return connection;
}

DBIF_Connection open_for_writing(const std::string& name)
{
    if (is_unnamed_file(known_connection(name))) {
        throw ConnectionFailure(
            ConnectionFailure::Reason::NoConnection,
            dbapi::quoted(name) +
                " is the path of a file, which is opened for reading only. To write to it, store "
                "it under a name: dbapi connection add NAME --sqlite " +
                name);
    }
    return open_known(name);
}
} // namespace dbapi::tool
