#include "dbif/retrieval/record_rows.h"

#include "dbif/query/record_query.h"
#include "dbif/retrieval/record_reader.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

void drop_rows_without_value(const RowMask& hasValue, QueryResult* result)
{
    if (std::find(hasValue.begin(), hasValue.end(), 0) == hasValue.end()) {
        return;
    }
    for (ResultColumn& column : result->columns) {
        column.keepRows(hasValue);
    }
    result->rows = static_cast<std::size_t>(std::count(hasValue.begin(), hasValue.end(), 1));
}

/// The only column is a key of the base: its values come straight from the key's index.
QueryResult
read_single_key(DBIF_Connection& connection, const TableColumn& column, const RecordQuery& records)
{
    const SqlText idSelect = records.selectsAll() ? SqlText() : records.selectIds();
    QueryResult result;
    result.columns.push_back(read_key_values(connection, column.table(), column.key(), idSelect));
    result.rows = result.columns.front().size();
    return result;
}

/// Fixed columns in one statement, then each key beside the rows.
QueryResult read_records(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& columns,
    std::size_t uncounted,
    const RecordQuery& records,
    bool isDistinct)
{
    const bool hasKeys = std::any_of(
        columns.begin(), columns.end(), [](const TableColumn& column) { return column.isKey(); });
    RecordCells cells(columns, uncounted);
    SqlText sql = records.select(cells.expressions(), isDistinct && !hasKeys);
    if (columns.size() == 1) {
        // An index may have them in this order.
        sql << "\nORDER BY " << cells.expressions().front();
    }
    RowMask hasValue;
    QueryResult result = cells.read(connection, sql, &hasValue);
    drop_rows_without_value(hasValue, &result);
    return result;
}

/// Tells whether all columns are keys of a table.
bool are_keys_of(RecordTable table, const std::vector<TableColumn>& columns)
{
    return std::all_of(columns.begin(), columns.end(), [table](const TableColumn& column) {
        return column.isKey() && column.table() == table;
    });
}
} // namespace

QueryResult read_record_rows(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& columns,
    std::size_t uncounted,
    const ConditionTree& condition,
    bool latestOnly,
    bool isDistinct)
{
    const RecordQuery records(connection, tables_of(columns), condition, latestOnly);
    if (columns.size() == 1 && columns.front().isKey()) {
        return read_single_key(connection, columns.front(), records);
    }
    if (columns.size() == 1 && columns.front().isIdOf(records.base())) {
        RowMask hasValue;
        return read_cells(connection, records.selectIds(), {Kind::Integer}, {true}, &hasValue);
    }
    if (records.selectsAll() && are_keys_of(records.base(), columns)) {
        RowMask hasValue;
        auto result = read_keys_of_all(connection, records.base(), columns, &hasValue);
        if (result.has_value()) {
            drop_rows_without_value(hasValue, &*result);
            return std::move(*result);
        }
    }
    return read_records(connection, columns, uncounted, records, isDistinct);
}
} // namespace dbif
