#pragma once

#include "dbif/connection.h"
#include "dbui/connection_record.h"

#include <set>
#include <string>
#include <vector>

namespace dbapi::tool {
/// The stored connections in the order of their file; none when no connection was ever stored.
/// Throws `CommandFailure` when the file cannot be read.
std::vector<DbuiConnection> stored_connections();

/// Their names; throws likewise.
std::set<std::string> stored_names();

/// The stored connection of that name. Throws `CommandFailure`, which suggests other names, when
/// there is none.
DbuiConnection stored_connection(const std::string& name);

/// Opens it. Throws `CommandFailure` when it does not open, or is no measurement database.
DBIF_Connection open_stored(const std::string& name);
} // namespace dbapi::tool
