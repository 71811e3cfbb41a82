#include "dbapi/key/record_selection.h"

#include "dbif/host/host_string.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/vanto_query.h"

namespace dbapi {
RecordSelection select_records(
    DBIF_Connection& connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    RecordSelection selection;
    if (condition == nullptr) {
        return selection;
    }
    DBIF_VantoQuery query(connection);
    query.addColumn(dbif::to_qt(tablename), QStringLiteral("id"), true);
    query.markDistinct();
    query.markLatestOnly(latestOnly);
    if (dbif::is_decided_on_points(condition)) {
        const dbif::RecordTable table = dbif::find_table(tablename)->table;
        selection.ids = std::make_unique<dbif::IdList>(
            connection, table, dbif::matching_ids(connection, table, condition, latestOnly));
        const dbif::TreeCondition picked(selection.ids->condition());
        query.setCondition(&picked);
    } else {
        query.setCondition(condition);
    }
    selection.sql = query.generateSql(false);
    return selection;
}
} // namespace dbapi
