#include "dbif/retrieval/query_run.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/engine/read_trace.h"
#include "dbif/query/record_query.h"
#include "dbif/retrieval/record_reader.h"
#include "dbif/retrieval/result_source.h"
#include "dbif/retrieval/row_order.h"
#include "dbif/retrieval/sweep_rows.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

ConditionTree tree_of(const DBIF_QueryCondition* condition)
{
    return condition == nullptr ? ConditionTree::constant(true) : condition->tree(false);
}

/// The result columns of a query; columns that only give the order come behind them.
struct Plan
{
    std::vector<ResultSource> sources;
    std::vector<SortKey> order;
    std::size_t shown = 0;
};

Plan plan_columns(DBIF_Connection& connection, const DBIF_Query::SharedData& query)
{
    Plan plan;
    std::vector<std::pair<QString, QString>> names;
    for (const DBIF_Query::Column& column : query.columns) {
        plan.sources.push_back(find_source(connection, column.table, column.column));
        names.emplace_back(column.table, column.column);
    }
    plan.shown = plan.sources.size();
    for (const DBIF_Query::Order& order : query.orders) {
        const auto name = std::make_pair(order.table, order.column);
        auto found = std::find(names.begin(), names.end(), name);
        if (found == names.end()) {
            plan.sources.push_back(find_source(connection, order.table, order.column));
            names.push_back(name);
            found = names.end() - 1;
        }
        plan.order.push_back(
            {static_cast<std::size_t>(found - names.begin()),
             order.direction == QStringLiteral("ASC")});
    }
    // Equal rows have to stand side by side to be found.
    for (std::size_t column = 0; query.distinct && column < plan.shown; ++column) {
        const bool isOrdered =
            std::any_of(plan.order.begin(), plan.order.end(), [column](const SortKey& key) {
                return key.column == column;
            });
        if (!isOrdered) {
            plan.order.push_back({column, true});
        }
    }
    return plan;
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

/// The only column is a key of the base: its values come straight from the key's index.
QueryResult
read_single_key(DBIF_Connection& connection, const ResultSource& source, const RecordQuery& records)
{
    const SqlText idSelect = records.selectsAll() ? SqlText() : records.selectIds();
    QueryResult result;
    result.columns.push_back(read_key_values(connection, source.table, source.key, idSelect));
    result.rows = result.columns.front().size();
    return result;
}

/// Fixed columns in one statement, then each key beside the rows.
QueryResult read_records(
    DBIF_Connection& connection,
    const std::vector<ResultSource>& sources,
    const RecordQuery& records,
    bool isDistinct)
{
    const bool hasKeys = std::any_of(
        sources.begin(), sources.end(), [](const ResultSource& source) { return source.isKey; });
    RecordCells cells(sources);
    SqlText sql = records.select(cells.expressions(), isDistinct && !hasKeys);
    if (sources.size() == 1) {
        // An index may have them in this order.
        sql << "\nORDER BY " << cells.expressions().front();
    }
    RowMask hasValue;
    QueryResult result = cells.read(connection, sql, &hasValue);
    drop_rows_without_value(hasValue, &result);
    return result;
}

QueryResult read_rows(
    DBIF_Connection& connection,
    const std::vector<ResultSource>& sources,
    const ConditionTree& condition,
    bool latestOnly,
    bool isDistinct)
{
    const bool isOnPoints =
        std::any_of(sources.begin(), sources.end(), [](const ResultSource& source) {
            return source.isOnPoints();
        });
    if (isOnPoints) {
        return read_sweep_rows(connection, sources, condition, latestOnly);
    }
    const RecordQuery records(connection, tables_of(sources), condition, latestOnly);
    if (sources.size() == 1 && sources.front().isKey) {
        return read_single_key(connection, sources.front(), records);
    }
    if (sources.size() == 1 && sources.front().isIdOf(records.base())) {
        RowMask hasValue;
        return read_cells(connection, records.selectIds(), {Kind::Integer}, {true}, &hasValue);
    }
    return read_records(connection, sources, records, isDistinct);
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

/// The records that satisfy a tree with points: those for which it is true without looking at
/// points, and those that have a setup with a point that makes it true.
std::vector<int> exact_ids(
    DBIF_Connection& connection,
    RecordTable table,
    const ConditionTree& tree,
    bool latestOnly)
{
    const ConditionTree withoutPoints = tree.mapped([](const ConditionTree& comparison) {
        return comparison.comparison().isOnPoints() ? ConditionTree::constant(false) : comparison;
    });
    std::vector<int> ids;
    if (withoutPoints.kind() != ConditionTree::Kind::False) {
        ids = read_ids(
            connection, RecordQuery(connection, {table}, withoutPoints, latestOnly).selectIds());
    }
    if (tree.hasPoints()) {
        const std::vector<int> more = ids_with_points(connection, table, tree, latestOnly);
        ids.insert(ids.end(), more.begin(), more.end());
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}
} // namespace

bool is_decided_on_points(const DBIF_QueryCondition* condition)
{
    return tree_of(condition).hasPoints();
}

std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    return exact_ids(connection, table, tree_of(condition), latestOnly);
}

QueryResult run_query(const DBIF_Query& query)
{
    const DBIF_Query::SharedData& data = query.data();
    DBIF_Connection connection = data.connection;
    DConHelper transaction(connection);
    if (!connection.isInTransaction()) {
        connection.beginTransaction();
        transaction.arm();
    }

    const TraceStep step(connection.trace(), "read the records");
    const Plan plan = plan_columns(connection, data);
    ConditionTree condition = tree_of(data.condition.get());
    const bool hasPointColumns =
        std::any_of(plan.sources.begin(), plan.sources.end(), [](const ResultSource& source) {
            return source.isOnPoints();
        });
    std::unique_ptr<IdList> picked;
    if (condition.hasPoints() && !hasPointColumns) {
        const TraceStep picking(connection.trace(), "pick the records by their points");
        const RecordTable base = meeting_table(tables_of(plan.sources));
        picked = std::make_unique<IdList>(
            connection, base, exact_ids(connection, base, condition, data.latestOnly));
        condition = picked->condition();
    }
    QueryResult result =
        read_rows(connection, plan.sources, condition, data.latestOnly, data.distinct);
    const TraceStep sorting(connection.trace(), "sort the rows");
    sort_rows(plan.order, &result);
    result.columns.resize(plan.shown);
    if (data.distinct) {
        remove_repeated_rows(&result);
    }
    if (data.limit >= 0) {
        keep_first_rows(static_cast<std::size_t>(data.limit), &result);
    }
    return result;
}
} // namespace dbif
