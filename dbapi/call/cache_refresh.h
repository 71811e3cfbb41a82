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

/// The latest modification time over the records of all tables; null in an empty database.
bool dbapi_get_latest_modified_time(
    DBIF_Connection& connection,
    QDateTime* time,
    std::string* error);

bool check_and_do_update_to_cache(
    DbapiCache& cache,
    const std::string& name,
    const std::string& query);
/// Whether the newest time of the database is another than the one the cache knows: a later one, an
/// earlier one after a backup was put back, or none. A time that cannot be read counts as not
/// newer.
bool is_database_modified_time_newer(DbapiCache& cache);
void update_database_modified_time(DbapiCache& cache);

// NOLINTBEGIN(readability-identifier-naming): published names.

/// Builds the condition of a query into the cache; on failure the query data is cleared.
bool updateQueryData(DbapiCache& cache, const std::string& query);
/// Opens the connection of a record into the cache; on failure the connection data is cleared.
bool updateDataConnection(DbapiCache& cache, const DbuiConnection& record);

// NOLINTEND(readability-identifier-naming)
