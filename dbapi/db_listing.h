#pragma once

#include "dbapi/key/key_statistics.h"

#include <set>
#include <string>
#include <vector>

/// The key names that records of a table have, those selected by the query string: see
/// `dbapi::db_get_keynames_in_table`.
bool dbapi_get_keynames_for_resolved_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* errors);

namespace dbapi {
/// Replaces the content of `tablenames` by the names of the seven record tables.
void db_get_tablenames(std::set<std::string>* tablenames);

/// The keys that the selected records of a table have; none for die and routine. With the key
/// format "SHORT" the key names alone, with "FULL" each as "Key(W,device,DOUBLE,PHYSICAL)".
/// `keynames` is emptied first and filled on success only; on failure `errors` receives the text,
/// or the standard error stream does when it is null.
bool db_get_keynames_in_table(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* errors);

/// The same keys by name, with how many records have each, and the smallest and largest number.
bool db_get_key_statistics(
    const std::string& connectionName,
    const std::string& tablename,
    std::vector<KeyStatistics>* keys,
    const std::string& query,
    std::string* errors);
} // namespace dbapi
