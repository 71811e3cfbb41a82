#pragma once

#include "dbapi/key/wanted_key.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <QSqlQuery>

#include <set>
#include <string>
#include <vector>

namespace dbapi {
/// The stored keys that agree with one of the wanted ones in name, table, category and data type,
/// and that records have: those that satisfy `condition` (null: all records), the latest alone for
/// `latestOnly`. Asks the catalogue of each table that a wanted key may stand in, in statements of
/// bounded length. Throws `DBIF_Exception`.
std::vector<KeyCandidate> held_keys(
    DBIF_Connection& connection,
    const std::vector<WantedKey>& wanted,
    const DBIF_QueryCondition* condition,
    bool latestOnly);

/// All keys that such records of one table have: by name alone when `isShort`, otherwise each as
/// "Key(W,device,DOUBLE,PHYSICAL)". None for die and routine. Throws `DBIF_Exception`.
std::set<std::string> held_key_names(
    DBIF_Connection connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool isShort);

/// The entry of such a list for a row of the catalogue's statement.
std::string listed_key(const std::string& tablename, const QSqlQuery& row, bool isShort);
} // namespace dbapi
