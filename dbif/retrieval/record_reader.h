#pragma once

#include "dbif/connection/column_store.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/schema/schema_names.h"
#include "dbif/value/table_column.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace dbif {
/// A mark for each row: 1 when it has a value in at least one of its columns.
using RowMask = std::vector<std::uint8_t>;

/// The rows of a statement as columns of the given kinds (`Integer`, `Double`, `Text`, or `Complex`
/// read from its text). A row is marked in `hasValue` when one of its columns in `isCounted` is not
/// NULL.
QueryResult read_cells(
    DBIF_Connection& connection,
    const SqlText& sql,
    const std::vector<ResultColumn::Kind>& kinds,
    const std::vector<bool>& isCounted,
    RowMask* hasValue);

/// The kind of column that a record key's values are read into.
ResultColumn::Kind key_column_kind(ValueKind kind);

/// All values of one key of the records that `idSelect` yields (of all records when it is empty).
ResultColumn read_key_values(
    DBIF_Connection& connection,
    RecordTable table,
    const KeyDefinition& definition,
    const SqlText& idSelect);

/// Keys of all records of a table, where that saves a statement for the records themselves: a row
/// for each id up to the highest, marked in `hasValue` when it has a value. Nothing where the
/// records are few, or their ids have many gaps.
std::optional<QueryResult> read_keys_of_all(
    DBIF_Connection& connection,
    RecordTable table,
    const std::vector<TableColumn>& keys,
    RowMask* hasValue);

/// Reads result columns that stand at records: one statement gives the fixed columns and the ids of
/// the records that have keys, then each key is read beside the rows.
class RecordCells
{
public:
    /// The last `uncounted` sources give no row a value.
    explicit RecordCells(const std::vector<TableColumn>& sources, std::size_t uncounted = 0);

    /// The expressions that the statement has to select, in this order; further integer columns may
    /// follow.
    [[nodiscard]] const std::vector<SqlText>& expressions() const { return expressions_; }

    /// The column of each source, and behind them `furtherIntegers` columns of whole numbers that
    /// the statement yields. Rows with a value in a source's column are marked in `hasValue`.
    QueryResult read(
        DBIF_Connection& connection,
        const SqlText& sql,
        RowMask* hasValue,
        std::size_t furtherIntegers = 0) const;

private:
    std::size_t add(RecordTable table, std::string_view column, ResultColumn::Kind kind);

    std::vector<TableColumn> sources_;
    std::size_t counted_;
    /// What each source reads: its column, or the id of the record that has the key.
    std::vector<std::size_t> cells_;
    std::vector<SqlText> expressions_;
    std::vector<ResultColumn::Kind> kinds_;
};
} // namespace dbif
