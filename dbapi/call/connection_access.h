#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// The stored record of exactly this name.
bool dbapi_get_connection_info(const std::string& name, DbuiConnection* record);

/// An open connection to the stored database of this name: the cache's own when it holds that one,
/// which must not be deleted (see `dbapi_is_using_cached_connection_object`), otherwise a new one,
/// which the caller owns. `connection` is null on failure.
bool dbapi_get_connection_object_by_name(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error);

namespace dbapi {
/// Opens it anew, whatever the cache holds.
bool open_stored_connection(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error);
} // namespace dbapi
