#pragma once

#include <string>
#include <vector>

namespace dbapi {
// The values stored under keywords, for the records that a query string selects.
//
// A keyword names a stored key ("W", "DEVD.W", "Key(W,device,DOUBLE,PHYSICAL)") or is a builtin
// keyname ("$DEVNAME"). A query string such as "{$LOT=S130} AND W=[5u,10u]" selects records; an
// empty one selects all. Only the latest measurements and setups count, unless the query string
// begins with "ALLDATA:".
//
// `values` is emptied first and filled on success only. Values are sorted ascending (no value
// first, numbers as numbers), in the order of the keywords; a query that selects nothing gives
// none. On failure `errors` receives the text, or the standard error stream does when it is null. A
// `DBIF_Exception` that the database throws while values are read passes to the caller. Why a call
// failed, `db_get_last_fault` tells piece by piece.
//
// Texts are UTF-8. Numbers come as the shortest text that reads back to the same double ("1e-06").
// The library keeps the connection open and the query string's condition for the next call, so
// calls are made in one thread at a time; what other programs change in between is seen.

/// One keyword: its value for each record that has one.
bool db_get_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// The same, each value once.
bool db_get_distinct_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);

/// Several keywords side by side: `(*values)[k][row]`, all of equal length. A row is one record of
/// the lowest table among the keywords with its parents or, when one of them is a key of setups,
/// one point. A missing value is an empty text; a row without any value is left out.
bool db_get_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors);
/// The same, each row once.
bool db_get_distinct_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors);
} // namespace dbapi

/// The same as `dbapi::db_get_values_for_keywords` or, with `distinct`,
/// `dbapi::db_get_distinct_values_for_keywords`, under an older name.
bool dbapi_get_values_for_keywords(
    bool distinct,
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors);
