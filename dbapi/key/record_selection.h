#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/connection.h"

#include <QString>

#include <memory>
#include <string>

namespace dbapi {
/// The records of a table that count, as a sub-select that stands in the statements of the
/// catalogue.
struct RecordSelection
{
    /// Yields the ids as "<table>_id"; empty when all records count.
    QString sql;
    /// Has to live while the sub-select is used.
    std::unique_ptr<dbif::IdList> ids;
};

/// The records that satisfy the condition, the latest ones alone for `latestOnly`; without a
/// condition all records, old ones too. What SQL alone cannot decide, points of setups, is decided
/// here, and the records are listed. Call inside a transaction; throws `DBIF_Exception`.
RecordSelection select_records(
    DBIF_Connection& connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly);
} // namespace dbapi
