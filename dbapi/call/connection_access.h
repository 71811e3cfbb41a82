#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// The stored record of exactly this name, with letter case; the connections file is read only when
/// it may have changed since the last call. False, with `record` cleared, when there is none or the
/// file cannot be read.
bool dbapi_get_connection_info(const std::string& name, DbuiConnection* record);

/// An open connection to the stored database of this name: the cache's own when it holds that one,
/// which must not be deleted (see `dbapi_is_using_cached_connection_object`), otherwise a new one,
/// which the caller deletes. False on failure: `connection` is then null, and the text goes to
/// `error`, or to the standard error stream when that is null.
bool dbapi_get_connection_object_by_name(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error);

namespace dbapi {
/// Opens the database of a record anew, whatever the cache holds. A missing SQLite file stays
/// missing. The caller owns `connection`, which is null on failure.
bool open_connection_of(
    const DbuiConnection& record,
    DBIF_Connection** connection,
    std::string* error);

/// The text for a connection that does not open; `detail` may be empty.
std::string not_opened(const std::string& name, const std::string& detail);
} // namespace dbapi
