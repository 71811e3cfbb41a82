#pragma once

#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <string>

/// Turns a query string into a condition, and sets `latestOnly`: true unless the query begins with
/// "ALLDATA:". An empty query gives the true condition. docs/query-strings.md describes the
/// grammar.
///
/// The condition is the cache's own when the cache holds one for this connection and query (see
/// `dbapi_is_using_cached_query_condition_object`); otherwise the caller owns it. False on failure:
/// the outputs are unchanged, and the error text goes to `errors`, or to the standard error stream
/// when that is null.
bool dbapi_get_query_str_dbif_query_condition_ptr(
    DBIF_Connection& connection,
    const std::string& query,
    DBIF_QueryCondition** condition,
    bool* latestOnly,
    std::string* errors);
