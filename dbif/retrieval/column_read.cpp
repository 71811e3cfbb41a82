#include "dbif/retrieval/column_read.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/engine/read_trace.h"
#include "dbif/query/record_query.h"
#include "dbif/retrieval/record_reader.h"
#include "dbif/retrieval/sweep_rows.h"

#include <algorithm>
#include <memory>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

bool has_points(const std::vector<TableColumn>& columns)
{
    return std::any_of(columns.begin(), columns.end(), [](const TableColumn& column) {
        return column.isOnPoints();
    });
}

/// Orders by every shown column: equal rows have to stand side by side to be found.
void order_by_all(std::size_t shown, std::vector<SortKey>* order)
{
    for (std::size_t column = 0; column < shown; ++column) {
        const bool isOrdered =
            std::any_of(order->begin(), order->end(), [column](const SortKey& key) {
                return key.column == column;
            });
        if (!isOrdered) {
            order->push_back({column, true});
        }
    }
}

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

/// Reads the only column, a key of the base, straight from the key's index.
QueryResult
read_single_key(DBIF_Connection& connection, const TableColumn& column, const RecordQuery& records)
{
    const SqlText idSelect = records.selectsAll() ? SqlText() : records.selectIds();
    QueryResult result;
    result.columns.push_back(read_key_values(connection, column.table(), column.key(), idSelect));
    result.rows = result.columns.front().size();
    return result;
}

/// Reads the fixed columns in one statement, then each key beside the rows.
QueryResult read_records(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& columns,
    const RecordQuery& records,
    bool isDistinct)
{
    const bool hasKeys = std::any_of(
        columns.begin(), columns.end(), [](const TableColumn& column) { return column.isKey(); });
    RecordCells cells(columns);
    SqlText sql = records.select(cells.expressions(), isDistinct && !hasKeys);
    if (columns.size() == 1) {
        // An index may yield them in this order.
        sql << "\nORDER BY " << cells.expressions().front();
    }
    RowMask hasValue;
    QueryResult result = cells.read(connection, sql, &hasValue);
    drop_rows_without_value(hasValue, &result);
    return result;
}

QueryResult read_rows(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& columns,
    const ConditionTree& condition,
    bool latestOnly,
    bool isDistinct)
{
    if (has_points(columns)) {
        return read_sweep_rows(connection, columns, condition, latestOnly);
    }
    const RecordQuery records(connection, tables_of(columns), condition, latestOnly);
    if (columns.size() == 1 && columns.front().isKey()) {
        return read_single_key(connection, columns.front(), records);
    }
    if (columns.size() == 1 && columns.front().isIdOf(records.base())) {
        RowMask hasValue;
        return read_cells(connection, records.selectIds(), {Kind::Integer}, {true}, &hasValue);
    }
    return read_records(connection, columns, records, isDistinct);
}

std::vector<int> read_ids(DBIF_Connection& connection, const SqlText& sql)
{
    std::vector<int> ids;
    BulkCursor cursor(connection, sql);
    while (cursor.next()) {
        if (!cursor.isNull(0)) {
            ids.push_back(cursor.integer(0));
        }
    }
    return ids;
}
} // namespace

bool ColumnRead::isOnPoints() const
{
    return has_points(columns);
}

std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly)
{
    // Selects the records for which it is true without looking at points, and those that have a
    // setup with a point that makes it true.
    const ConditionTree withoutPoints = condition.mapped([](const ConditionTree& comparison) {
        return comparison.comparison().isOnPoints() ? ConditionTree::constant(false) : comparison;
    });
    std::vector<int> ids;
    if (withoutPoints.kind() != ConditionTree::Kind::False) {
        ids = read_ids(
            connection, RecordQuery(connection, {table}, withoutPoints, latestOnly).selectIds());
    }
    if (condition.hasPoints()) {
        const std::vector<int> more = ids_with_points(connection, table, condition, latestOnly);
        ids.insert(ids.end(), more.begin(), more.end());
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

QueryResult read_columns(ColumnRead read)
{
    DBIF_Connection& connection = read.connection;
    const ReadTransaction transaction(connection);

    const TraceStep step(connection.inner().trace(), "read the records");
    std::unique_ptr<IdList> picked;
    if (read.condition.hasPoints() && !read.isOnPoints()) {
        const TraceStep picking(connection.inner().trace(), "pick the records by their points");
        const RecordTable base = meeting_table(tables_of(read.columns));
        picked = std::make_unique<IdList>(
            connection, base, matching_ids(connection, base, read.condition, read.latestOnly));
        read.condition = picked->condition();
    }
    QueryResult result =
        read_rows(connection, read.columns, read.condition, read.latestOnly, read.distinct);
    const TraceStep sorting(connection.inner().trace(), "sort the rows");
    const std::size_t shown = read.columns.size() - read.hidden;
    if (read.distinct) {
        order_by_all(shown, &read.order);
    }
    sort_rows(read.order, &result);
    result.columns.resize(shown);
    if (read.distinct) {
        remove_repeated_rows(&result);
    }
    if (read.limit >= 0) {
        keep_first_rows(static_cast<std::size_t>(read.limit), &result);
    }
    return result;
}
} // namespace dbif
