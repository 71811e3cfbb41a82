#include "dbif/bulk_cursor.h"
#include "dbif/record_tables.h"
#include "dbif/transaction_guard.h"

#include <algorithm>

namespace {
bool has_setup(DBIF_Connection& connection, int id)
{
    dbif::SqlText sql;
    sql << "SELECT 1 FROM setup WHERE id = " << id;
    return dbif::BulkCursor(connection, sql).next();
}
} // namespace

QSharedPointer<DBIF_Setup> DBIF_Setup::get(DBIF_Connection& connection, int id)
{
    DConHelper transaction(connection);
    if (!connection.isInTransaction()) {
        connection.beginTransaction();
        transaction.arm();
    }
    if (!has_setup(connection, id)) {
        return {};
    }
    QList<DBIF_SetupColumn> columns;
    std::vector<dbif::KeyDefinition> definitions;
    std::size_t points = 0;
    dbif::SqlText sql;
    sql << "SELECT column_key, points FROM setup_association JOIN setup_column ON setup_column.id = setup_column_id "
           "WHERE setup_id = "
        << id << " ORDER BY setup_column_id";
    std::vector<std::string> keys;
    {
        dbif::BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            keys.emplace_back(cursor.text(0));
            points = std::max(points, static_cast<std::size_t>(cursor.integer(1)));
        }
    }
    for (const std::string& key : keys) {
        definitions.push_back(
            dbif::existing_definition(connection, dbif::RecordTable::Setup, dbif::to_qt(key)));
        columns.append(DBIF_SetupColumn(definitions.back(), connection));
    }
    dbif::SweepArrays arrays;
    dbif::read_sweeps(
        connection, {{id, points}}, definitions,
        [&arrays](std::size_t /*place*/, dbif::SweepArrays& read) { arrays = std::move(read); });
    return QSharedPointer<DBIF_Setup>(
        new DBIF_Setup(connection, columns, points, std::move(arrays)));
}
