#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/value/table_column.h"

#include <cstddef>
#include <vector>

namespace dbif {
/// The rows of a query of records: one for each that satisfies the condition, with its parents. A
/// row without a value is left out; the last `uncounted` columns, which are fixed ones, give it
/// none. With `isDistinct`, equal rows may be given once where that is cheap.
QueryResult read_record_rows(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& columns,
    std::size_t uncounted,
    const ConditionTree& condition,
    bool latestOnly,
    bool isDistinct);
} // namespace dbif
