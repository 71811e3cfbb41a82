#pragma once

#include "dbif/query/query.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/schema/schema_names.h"

#include <vector>

namespace dbif {
/// Runs a query on the measurement database, in one read transaction (its own, unless one is open):
/// rows of records with their parents, or, when a key of setups is among the columns, rows of
/// points. Conditions on points are decided exactly. A row is left out when all its columns are
/// empty. Rows are sorted by the query's orders. Throws `DBIF_Exception` on a database error, for a
/// column that there is not, and on damaged data.
QueryResult run_query(const DBIF_Query& query);

/// The ids of the records of `table` that satisfy the condition exactly, ascending, each once.
std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const DBIF_QueryCondition* condition,
    bool latestOnly);

/// Tells whether the condition compares points of setups, which SQL alone cannot decide.
bool is_decided_on_points(const DBIF_QueryCondition* condition);
} // namespace dbif
