#include "dbui/connection_storing.h"

#include "dbif/host/error_text.h"
#include "dbui/connections_file.h"

#include <algorithm>
#include <vector>

namespace dbui {
namespace {
using Connections = std::vector<DbuiConnection>;

/// Makes the change in the list, or leaves the list as it is.
StoreOutcome store_in(Connections* connections, const StoreRequest& request)
{
    Connections changed = *connections;
    if (request.replaced) {
        const auto old = std::find(changed.begin(), changed.end(), *request.replaced);
        if (old == changed.end()) {
            return StoreOutcome::Outdated;
        }
        changed.erase(old);
    }
    const std::string name = request.connection.get_connectionName();
    for (const DbuiConnection& other : changed) {
        if (other.get_connectionName() == name) {
            return StoreOutcome::NameTaken;
        }
    }
    changed.push_back(request.connection);
    connections->swap(changed);
    return StoreOutcome::Stored;
}
} // namespace

StoreOutcome foresee_storing(const StoreRequest& request)
{
    Connections connections;
    std::string unused; // a missing file is made, and any other fault shows when it is written
    dbui_get_connections_from_file(&connections, &unused);
    return store_in(&connections, request);
}

StoreOutcome store_connection(const StoreRequest& request, std::string* error)
{
    dbif::clear_error(error);
    if (request.connection.get_connectionName().empty()) {
        return StoreOutcome::Failed;
    }
    StoreOutcome outcome = StoreOutcome::Failed;
    std::string message;
    const bool saved = rewrite_connections(
        [&](StoredConnections* stored) {
            outcome = stored->isDamaged && !request.mayReplaceDamagedFile
                          ? StoreOutcome::FileDamaged
                          : store_in(&stored->connections, request);
            return outcome == StoreOutcome::Stored;
        },
        &message);
    if (!saved && (outcome == StoreOutcome::Stored || outcome == StoreOutcome::Failed)) {
        dbif::deliver_error(error, message);
        return StoreOutcome::Failed;
    }
    return outcome;
}
} // namespace dbui
