#pragma once

#include "dbapi/call/call_cache.h"
#include "dbif/connection/connection.h"

#include <QDateTime>

#include <string>

// When the cache is used again and when its parts are made anew. Each outermost public call starts
// with `dbapi_initialize_global_cache`.

/// Brings the cache up to date for a stored connection and a query string. False, with the error
/// text in `error` (or on the standard error stream when that is null), when no connection of the
/// name is stored. A connection that does not open, or a query that does not parse, leaves its part
/// of the cache empty and is reported by whoever needs it.
bool dbapi_initialize_global_cache(
    const std::string& name,
    const std::string& query,
    std::string* error);

/// The latest modification time over the records of all tables; null in an empty database. False,
/// with `time` unchanged, on a database error, whose text goes to `error`, or to the standard error
/// stream when that is null.
bool dbapi_get_latest_modified_time(
    DBIF_Connection& connection,
    QDateTime* time,
    std::string* error);

/// Does the work of `dbapi_initialize_global_cache` on a cache: keeps the connection while its
/// stored record and its file stay the same, and the condition while query string and data do too.
/// False when no connection of the name is stored; the cache is then empty and `last_errors` says
/// so.
bool check_and_do_update_to_cache(
    DbapiCache& cache,
    const std::string& name,
    const std::string& query);
/// Tells whether the newest time of the database is another than the one the cache knows: a later
/// one, an earlier one after a backup was put back, or none. A time that cannot be read counts as
/// not newer. The cache must have a connection.
bool is_database_modified_time_newer(DbapiCache& cache);
/// Notes how new the data is; nothing is known after a database error. The cache must have a
/// connection.
void update_database_modified_time(DbapiCache& cache);

// NOLINTBEGIN(readability-identifier-naming): published names.

/// Builds the condition of a query string into the cache, which must have a connection. On failure
/// the query data is cleared and `last_errors` has the text.
bool updateQueryData(DbapiCache& cache, const std::string& query);
/// Opens the connection of a record into the cache, in the place of the one that it has. On failure
/// there is none, and `last_errors` has the text.
bool updateDataConnection(DbapiCache& cache, const DbuiConnection& record);

// NOLINTEND(readability-identifier-naming)
