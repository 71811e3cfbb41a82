#include "dbif/record/record_retrieval.h"

#include "dbif/host/host_string.h"

namespace dbif {
DBIF_VantoQuery column_values_query(
    const DBIF_Connection& connection,
    const QString& table,
    const QString& column,
    const DBIF_SingleColumnCondition& notNull,
    SortOrder order,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool distinct)
{
    DBIF_VantoQuery query(connection);
    query.addColumn(table, column, false);
    if (order != UNSORTED) {
        query.addOrder(table, column, order == ASCENDING);
    }
    query.markLatestOnly(latestOnly);
    query.markDistinct(distinct);
    // Only the rows of a key that have a value are read, so it needs no such condition.
    const bool isKey = find_data_table(to_utf8(table)) != nullptr;
    if (isKey) {
        query.setCondition(condition);
    } else if (condition == nullptr) {
        query.setCondition(notNull);
    } else {
        query.setCondition(DBIF_CompoundQueryCondition(&notNull, AND, condition));
    }
    return query;
}
} // namespace dbif
