#include "dbui/connection_registry.h"

#include "dbif/host/error_text.h"
#include "dbui/connections_file.h"
#include "dbui/message_boxes.h"

#include <algorithm>
#include <vector>

namespace {
using Connections = std::vector<DbuiConnection>;

/// The stored list; empty when it cannot be read.
Connections stored_connections()
{
    Connections connections;
    std::string unused;
    dbui_get_connections_from_file(&connections, &unused);
    return connections;
}

bool contains(const Connections& connections, const DbuiConnection& wanted)
{
    return std::find(connections.begin(), connections.end(), wanted) != connections.end();
}

void erase_first(Connections* connections, const DbuiConnection& wanted)
{
    const auto found = std::find(connections->begin(), connections->end(), wanted);
    if (found != connections->end()) {
        connections->erase(found);
    }
}

/// The outcome of a change; a failure is reported with its own message or, where that is empty,
/// `standby`.
bool finish(
    bool done,
    bool interactive,
    const std::string& boxTitle,
    const std::string& message,
    const std::string& standby,
    std::string* error)
{
    if (!done) {
        dbui::report_failure(interactive, boxTitle, message.empty() ? standby : message, error);
    }
    return done;
}
} // namespace

bool dbui_add_connection(const DbuiConnection& connection, bool interactive, std::string* error)
{
    dbif::clear_error(error);
    const std::string name = connection.get_connectionName();
    if (name.empty()) {
        return false;
    }
    std::string message;
    const bool saved = dbui::rewrite_connections(
        [&connection](dbui::StoredConnections* stored) {
            erase_first(&stored->connections, connection);
            stored->connections.push_back(connection);
            return true;
        },
        &message);
    return finish(
        saved, interactive, "Add Connection", message, "Failed to add connection " + name + ".",
        error);
}

bool dbui_update_connection(
    const DbuiConnection& oldConnection,
    const DbuiConnection& newConnection,
    bool interactive,
    std::string* error)
{
    dbif::clear_error(error);
    std::string message;
    dbui_remove_connection(oldConnection, false, &message);

    // The old record is still there only when it could not be removed.
    bool updated = false;
    if (contains(stored_connections(), oldConnection)) {
        updated = dbui::rewrite_connections(
            [&](dbui::StoredConnections* stored) {
                std::replace(
                    stored->connections.begin(), stored->connections.end(), oldConnection,
                    newConnection);
                return true;
            },
            &message);
    } else {
        updated = dbui_add_connection(newConnection, false, &message);
    }
    return finish(
        updated, interactive, "Edit Connection", message,
        "Failed to update connection \"" + oldConnection.get_connectionName() + "\".\n", error);
}

bool dbui_remove_connection(const DbuiConnection& connection, bool interactive, std::string* error)
{
    dbif::clear_error(error);
    if (!contains(stored_connections(), connection)) {
        return true;
    }
    std::string message;
    const bool saved = dbui::rewrite_connections(
        [&connection](dbui::StoredConnections* stored) {
            erase_first(&stored->connections, connection);
            return true;
        },
        &message);
    return finish(
        saved, interactive, "Remove Connection", message,
        "Failed to remove connection \"" + connection.get_connectionName() + "\".\n", error);
}

bool dbui_find_connection_by_name(const std::string& name, DbuiConnection* connection)
{
    const Connections connections = stored_connections();
    const auto found =
        std::find_if(connections.begin(), connections.end(), [&name](const DbuiConnection& stored) {
            return stored.get_connectionName() == name;
        });
    if (found == connections.end()) {
        connection->clear();
        return false;
    }
    *connection = *found;
    return true;
}

void dbui_get_connection_names(std::set<std::string>* names, std::string* error)
{
    dbif::clear_error(error);
    names->clear();
    Connections connections;
    std::string message;
    if (!dbui_get_connections_from_file(&connections, &message) && error != nullptr) {
        *error = message;
    }
    for (const DbuiConnection& connection : connections) {
        names->insert(connection.get_connectionName());
    }
}
