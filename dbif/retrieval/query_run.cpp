#include "dbif/retrieval/query_run.h"

#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"
#include "dbif/retrieval/column_read.h"

#include <algorithm>

namespace dbif {
namespace {
ConditionTree tree_of(const DBIF_QueryCondition* condition)
{
    return condition == nullptr ? ConditionTree::constant(true) : condition->tree(false);
}

/// The place of a column in the read; one that only gives the order is added behind the others.
std::size_t place_of(const TableColumn& column, ColumnRead* read)
{
    const auto found = std::find(read->columns.begin(), read->columns.end(), column);
    if (found != read->columns.end()) {
        return static_cast<std::size_t>(found - read->columns.begin());
    }
    read->columns.push_back(column);
    ++read->hidden;
    return read->columns.size() - 1;
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
    return matching_ids(std::move(connection), table, tree_of(condition), latestOnly);
}

QueryResult run_query(const DBIF_Query& query)
{
    const DBIF_Query::SharedData& data = query.data();
    ColumnRead read(data.connection, {});
    read.condition = tree_of(data.condition.get());
    read.latestOnly = data.latestOnly;
    read.distinct = data.distinct;
    read.limit = data.limit;
    const auto existing = [&read](const QString& table, const QString& column) {
        return existing_column(read.connection, to_utf8(table), to_utf8(column));
    };
    for (const DBIF_Query::Column& column : data.columns) {
        read.columns.push_back(existing(column.table, column.column));
    }
    for (const DBIF_Query::Order& order : data.orders) {
        const std::size_t place = place_of(existing(order.table, order.column), &read);
        read.order.push_back({place, order.direction == QStringLiteral("ASC")});
    }
    return read_columns(std::move(read));
}
} // namespace dbif
