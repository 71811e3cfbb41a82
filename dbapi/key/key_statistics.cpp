#include "dbapi/key/key_statistics.h"

#include "dbapi/key/record_selection.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <tuple>

namespace dbapi {
namespace {
/// Aggregates the companion table by key, then adds the few definitions. Where records are
/// selected, they drive: each has its keys side by side.
QString statistics_statement(
    DBIF_Connection& connection,
    const dbif::TableInfo& table,
    const QString& recordIds)
{
    const bool isOnPoints = table.keys == dbif::KeyKind::Direction;
    const std::string held = isOnPoints ? table.associationTable() : table.dataTable();
    const std::string columns = table.columnTable();
    const std::string aggregates = isOnPoints ? "SUM(points) AS points, MIN(minimum) AS smallest, "
                                                "MAX(maximum) AS largest"
                                              : "NULL AS points, MIN(number) AS smallest, "
                                                "MAX(number) AS largest";
    std::string sql = "SELECT " + columns + ".name, " + columns + ".data_type, " + columns +
                      (isOnPoints ? ".is_input" : ".category") +
                      ", held.records, held.points, held.smallest, held.largest\nFROM (SELECT " +
                      table.columnLink() + ", COUNT(*) AS records, " + aggregates + "\nFROM ";
    const std::string selected = dbif::trimmed(dbif::to_utf8(recordIds));
    if (!selected.empty()) {
        sql += "(" + selected + ") selected" + connection.dialect().orderedJoin().utf8() + held +
               " ON " + held + "." + table.linkColumn() + " = selected." + table.linkColumn();
    } else {
        sql += held;
    }
    sql += "\nGROUP BY " + table.columnLink() + ") held\nINNER JOIN " + columns + " ON " + columns +
           ".id = held." + table.columnLink();
    return dbif::to_qt(sql);
}

std::optional<double> number_of(const QVariant& value)
{
    return value.isNull() ? std::nullopt : std::optional<double>(value.toDouble());
}

KeyStatistics row_statistics(const dbif::TableInfo& table, const QSqlQuery& row)
{
    const bool isOnPoints = table.keys == dbif::KeyKind::Direction;
    KeyStatistics key;
    key.name = dbif::to_utf8(row.value(0).toString());
    key.datatype = convert_to_full_datatype_name(dbif::to_utf8(row.value(1).toString()));
    key.category = isOnPoints
                       ? convert_setup_is_input_to_full_category_name(row.value(2).toInt() != 0)
                       : dbif::to_utf8(row.value(2).toString());
    key.records = row.value(3).toLongLong();
    if (isOnPoints) {
        key.points = row.value(4).toLongLong();
    }
    key.minimum = number_of(row.value(5));
    key.maximum = number_of(row.value(6));
    return key;
}
} // namespace

std::vector<KeyStatistics> read_key_statistics(
    DBIF_Connection& connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    const dbif::TableInfo& table = *dbif::find_table(tablename);
    const dbif::ReadTransaction transaction(connection);
    const RecordSelection selection = select_records(connection, tablename, condition, latestOnly);
    QSqlQuery rows = connection.query(
        statistics_statement(connection, table, selection.sql), 0, __FILE__, __LINE__);
    std::vector<KeyStatistics> keys;
    while (rows.next()) {
        keys.push_back(row_statistics(table, rows));
    }
    std::sort(keys.begin(), keys.end(), [](const KeyStatistics& a, const KeyStatistics& b) {
        return std::tie(a.name, a.category, a.datatype) < std::tie(b.name, b.category, b.datatype);
    });
    return keys;
}
} // namespace dbapi
