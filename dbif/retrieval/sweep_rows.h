#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/value/table_column.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace dbif {
/// The rows of a query that reads keys of setups: a row per point that satisfies the condition,
/// with the columns of the setup's records repeated beside it. A setup that has none of the keys
/// gives no row, nor does a point without any value. In the order of setups and points.
class SweepRows
{
    Q_DISABLE_COPY_MOVE(SweepRows)

public:
    /// Selects the setups. The last `uncounted` sources, which are columns of records, give a point
    /// no value. The connection must outlive the object.
    SweepRows(
        DBIF_Connection& connection,
        const std::vector<TableColumn>& sources,
        std::size_t uncounted,
        const ConditionTree& condition,
        bool latestOnly);
    ~SweepRows();

    /// Collects the rows of some more setups; false when none is left. `wanted` is the number of
    /// rows that the caller is going to collect, if there are as many.
    bool readOn(std::size_t wanted);
    /// The number of rows that are collected.
    [[nodiscard]] std::size_t size() const;
    /// Hands the collected rows over.
    QueryResult take();

private:
    class Reading;
    std::unique_ptr<Reading> reading_;
};

/// The ids of the records of `table` that have a setup with a point for which the condition is
/// true; a record may come several times.
std::vector<int> ids_with_points(
    DBIF_Connection& connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly);
} // namespace dbif
