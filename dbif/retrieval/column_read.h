#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/connection.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/retrieval/row_order.h"
#include "dbif/retrieval/sweep_rows.h"
#include "dbif/value/table_column.h"

#include <cstddef>
#include <functional>
#include <memory>
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
    /// Tells whether superseded measurements and setups are left out.
    bool latestOnly = true;
    /// Tells whether equal rows are returned once.
    bool distinct = false;
    /// The order of the rows, by places in `columns`; without one, rows come as they are stored.
    std::vector<SortKey> order;
    /// Columns at the end of `columns` that only give the order and are not in the result.
    std::size_t hidden = 0;
    /// Columns at the end of `columns`, fixed ones of records, whose values do not keep a row that
    /// is empty otherwise.
    std::size_t uncounted = 0;
    /// The largest number of rows; -1 for all.
    long long limit = -1;
    /// Called in the calling thread from time to time, with the number of rows so far. What it
    /// throws ends the read.
    std::function<void(std::size_t rows)> progress;

    /// Tells whether a row is one point of a setup, and not one record.
    [[nodiscard]] bool isOnPoints() const;
    /// Tells whether all rows have to be read before the first is known: to be sorted, or compared.
    /// The order of the ids of the records that are rows needs no sorting.
    [[nodiscard]] bool needsAllRows() const;
};

/// Reads, in one read transaction (its own, unless one is open): rows of records with their
/// parents, or, when a key of setups is among the columns, rows of points. Conditions on points are
/// decided exactly. A row is left out when all its columns are empty. Throws `DBIF_Exception` on a
/// database error and on damaged data.
QueryResult read_columns(ColumnRead read);

/// A read whose rows are given some at a time. Its transaction lasts as long as the object.
class ColumnStream
{
    Q_DISABLE_COPY_MOVE(ColumnStream)

public:
    /// With `Many`, records are selected by ranges of their ids, so that what is in memory has a
    /// bound, unless all rows are needed; and rows are given only as long as the file of the
    /// database is the one that was opened.
    enum class Parts { One, Many };

    explicit ColumnStream(ColumnRead read, Parts parts);
    ~ColumnStream();

    /// The number of rows there are at most, by the numbers of records and points that the
    /// condition selects. Costs a statement. To be called before `next`.
    std::size_t mostRows();

    /// The next rows: as many as are asked for, or as are left. Throws like `read_columns`; then
    /// the stream is of no more use.
    QueryResult next(std::size_t rows);

private:
    void begin();
    [[nodiscard]] std::size_t available() const;
    void report() const;
    /// Reads some more rows, of the number that is wanted; false when none is left.
    bool readOn(std::size_t wanted);
    [[nodiscard]] ConditionTree nextCondition();
    void holdPoints();
    void hold(QueryResult rows);
    void arrange();
    void checkFile() const;
    QueryResult take(std::size_t rows);

    ColumnRead read_;
    Parts parts_;
    ReadTransaction transaction_;
    RecordTable base_;
    bool hasBegun_ = false;
    bool isArranged_ = false;
    std::unique_ptr<IdList> picked_;
    /// The ids from `nextId_` on are not read yet.
    std::size_t nextId_ = 0;
    std::size_t highestId_ = 0;
    /// The setups that are being read.
    std::unique_ptr<SweepRows> points_;
    /// Rows that are read; the first `given_` of them were handed over.
    QueryResult held_;
    std::size_t given_ = 0;
    std::size_t taken_ = 0;
    /// The number of rows that may still be given.
    std::size_t left_;
};

/// The ids of the records of `table` that satisfy the condition exactly, ascending, each once.
std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly);
} // namespace dbif
