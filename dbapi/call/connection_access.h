#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// The stored record of exactly this name, with letter case; the connections file is read only when
/// it may have changed since the last call. A name that is not stored, but is the path of an SQLite
/// file (see `is_database_path`), gives a record of that file under its path as the name. False,
/// with `record` cleared, when there is neither, or the file of connections cannot be read.
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
/// Tells whether a connection that is not stored under this name is meant as the path of an SQLite
/// file: it has a slash, or it is an existing file whose name ends as those of SQLite files do
/// (".db", ".sqlite", ".sqlite3", in any letter case).
bool is_database_path(const std::string& name);

/// Tells whether a record is that of a file without a stored connection, which is only read.
bool is_unnamed_file(const DbuiConnection& record);

/// Opens the database of a record anew, whatever the cache holds; an unnamed file for reading only.
/// A missing SQLite file stays missing. The caller owns `connection`, which is null on failure.
bool open_connection_of(
    const DbuiConnection& record,
    DBIF_Connection** connection,
    std::string* error);

/// The text for a connection that does not open; `detail` may be empty.
std::string not_opened(const std::string& name, const std::string& detail);
} // namespace dbapi
