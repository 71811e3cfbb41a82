#pragma once

#include "dbapi/key/key_term.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <QSqlQuery>

#include <map>
#include <set>
#include <string>

// Which keys the records of a table have, as the database says. The records that count are those
// that satisfy `condition`, with `flag`, the latest-only flag, without superseded ones. Under a
// null condition all records count, superseded ones too.
//
// `tablename` is one of the seven record tables; die and routine have no keys. Maps and sets are
// added to, and stay as they were on failure. False on a database error, whose text goes to
// `error`, or to the standard error stream when that is null. Conditions stay the caller's.

/// Runs the statement that lists the keys of a table: name, data type, and category or input flag.
/// With key terms of that table, only keys that fit one of them are listed. `query` stands before
/// its first row, and must not outlive the connection.
bool dbapi_get_keynames_for_table_as_query_results(
    DBIF_Connection& connection,
    QSqlQuery* query,
    const std::set<dbapiKeyTermC>& keyTerms,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    bool flag,
    std::string* error);

/// Adds each row of that statement to a preprocessed map (see keyword_map.h), and leaves `query`
/// behind its last row.
void dbapi_update_map_of_keynames_from_query_results(
    const std::string& tablename,
    QSqlQuery& query,
    std::map<std::string, std::set<std::string>>* map);

/// Adds each row of it to a set: the key name alone for the key format "SHORT", otherwise in
/// function form, "Key(W,device,DOUBLE,PHYSICAL)".
void dbapi_get_set_of_keynames_from_query_results(
    const std::string& tablename,
    const std::string& keyFormat,
    QSqlQuery& query,
    std::set<std::string>* set);

/// Adds all keys of a table to a preprocessed map.
bool dbapi_get_keynames_for_table_and_update_map(
    DBIF_Connection& connection,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    std::map<std::string, std::set<std::string>>* map,
    bool flag,
    std::string* error);
/// Adds all keys of a table to a set, in the key format "SHORT" or "FULL".
bool dbapi_get_keynames_for_table_as_set(
    DBIF_Connection& connection,
    std::set<std::string>* set,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    const std::string& keyFormat,
    bool flag,
    std::string* error);
