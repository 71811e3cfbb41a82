#pragma once

#include "dbapi/key/key_statistics.h"

#include <set>
#include <string>
#include <vector>

/// The same as `dbapi::db_get_keynames_in_table`, under an older name.
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

// The next two calls list what records of one table hold. `tablename` is one of the seven
// ("device", in this letter case), and `query` selects the records as in db_values.h; empty, it
// selects all that are not superseded. The output is emptied first and filled on success only; on
// failure `errors` receives the text, or the standard error stream does when it is null. Nothing is
// thrown.

/// The keys that the selected records of a table have; none for die and routine. With the key
/// format "SHORT" the key names alone, with "FULL" each as "Key(W,device,DOUBLE,PHYSICAL)", which
/// is a keyword that names this key only.
bool db_get_keynames_in_table(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* errors);

/// The same keys, sorted by name, each with how many of the records have it and its smallest and
/// largest number.
bool db_get_key_statistics(
    const std::string& connectionName,
    const std::string& tablename,
    std::vector<KeyStatistics>* keys,
    const std::string& query,
    std::string* errors);
} // namespace dbapi
