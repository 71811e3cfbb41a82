#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <set>
#include <string>
#include <vector>

namespace dbapi::tool {
/// The names of the stored connections; none when no connection was ever stored. Throws
/// `CommandFailure` when their file cannot be read.
std::set<std::string> stored_names();

/// All stored connections, sorted by name; fails like `stored_names`.
std::vector<DbuiConnection> stored_connections();

/// The stored connection of that name. Throws `CommandFailure`, which suggests other names, when
/// there is none.
DbuiConnection stored_connection(const std::string& name);

/// Opens it. Throws `CommandFailure` when it does not open, or is no measurement database.
DBIF_Connection open_stored(const std::string& name);
} // namespace dbapi::tool
