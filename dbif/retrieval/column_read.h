#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/retrieval/row_order.h"
#include "dbif/value/table_column.h"

#include <vector>

namespace dbif {
/// A read of several columns together: what is asked, under which condition, in which order.
struct ColumnRead
{
    /// A read of all latest records, in no order.
    ColumnRead(DBIF_Connection from, std::vector<TableColumn> asked)
        : connection(std::move(from)), columns(std::move(asked))
    {}

    DBIF_Connection connection;
    std::vector<TableColumn> columns;
    ConditionTree condition = ConditionTree::constant(true);
    /// Whether superseded measurements and setups are left out.
    bool latestOnly = true;
    /// Whether equal rows are returned once.
    bool distinct = false;
    /// The order of the rows, by places in `columns`; without one, rows come as they are stored.
    std::vector<SortKey> order;
    /// Columns at the end of `columns` that only give the order and are not in the result.
    std::size_t hidden = 0;
    /// The largest number of rows; -1 for all.
    int limit = -1;

    /// Whether a row is one point of a setup, and not one record.
    [[nodiscard]] bool isOnPoints() const;
};

/// Reads, in one read transaction (its own, unless one is open): rows of records with their
/// parents, or, when a key of setups is among the columns, rows of points. Conditions on points are
/// decided exactly. A row is left out when all its columns are empty. Throws `DBIF_Exception` on a
/// database error and on damaged data.
QueryResult read_columns(ColumnRead read);

/// The ids of the records of `table` that satisfy the condition exactly, ascending, each once.
std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly);
} // namespace dbif
