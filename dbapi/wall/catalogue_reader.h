#pragma once

#include "dbapi/key/key_term.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <QSqlQuery>

#include <map>
#include <set>
#include <string>

// Which keys the records of a table have, as the database says. `flag` is the latest-only flag: the
// records that count are then the latest ones. A condition restricts them further; none leaves all
// records, old ones too.

/// Runs the catalogue statement for the key terms of one table; `query` stands before its first
/// row. False, with the database's error text, when it fails. The table is one of those with keys,
/// or die or routine, which give no rows.
bool dbapi_get_keynames_for_table_as_query_results(
    DBIF_Connection& connection,
    QSqlQuery* query,
    const std::set<dbapiKeyTermC>& keyTerms,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    bool flag,
    std::string* error);

/// Adds each row to a preprocessed map (see keyword_map.h).
void dbapi_update_map_of_keynames_from_query_results(
    const std::string& tablename,
    QSqlQuery& query,
    std::map<std::string, std::set<std::string>>* map);

/// Adds each row to a set: the key name alone for the key format "SHORT", in function form
/// otherwise.
void dbapi_get_set_of_keynames_from_query_results(
    const std::string& tablename,
    const std::string& keyFormat,
    QSqlQuery& query,
    std::set<std::string>* set);

// All keys of a table, into a map or a set.

bool dbapi_get_keynames_for_table_and_update_map(
    DBIF_Connection& connection,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    std::map<std::string, std::set<std::string>>* map,
    bool flag,
    std::string* error);
bool dbapi_get_keynames_for_table_as_set(
    DBIF_Connection& connection,
    std::set<std::string>* set,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    const std::string& keyFormat,
    bool flag,
    std::string* error);
