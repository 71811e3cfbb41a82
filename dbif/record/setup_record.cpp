#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/record/record_tables.h"

namespace {
bool has_setup(DBIF_Connection& connection, int id)
{
    dbif::SqlText sql;
    sql << "SELECT 1 FROM setup WHERE id = " << id;
    return dbif::BulkCursor(connection, sql).next();
}

/// The keys that a setup has, by the id of their column.
std::vector<dbif::KeyDefinition> keys_of(DBIF_Connection& connection, int setup)
{
    dbif::SqlText sql;
    sql << "SELECT column_key FROM setup_association JOIN setup_column ON setup_column.id = setup_column_id "
           "WHERE setup_id = "
        << setup << " ORDER BY setup_column_id";
    std::vector<std::string> keys;
    {
        dbif::BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            keys.emplace_back(cursor.text(0));
        }
    }
    std::vector<dbif::KeyDefinition> definitions;
    definitions.reserve(keys.size());
    for (const std::string& key : keys) {
        definitions.push_back(
            dbif::existing_definition(connection, dbif::RecordTable::Setup, dbif::to_qt(key)));
    }
    return definitions;
}
} // namespace

QSharedPointer<DBIF_Setup> DBIF_Setup::get(DBIF_Connection& connection, int id)
{
    const dbif::ReadTransaction transaction(connection);
    if (!has_setup(connection, id)) {
        return {};
    }
    const std::vector<dbif::KeyDefinition> keys = keys_of(connection, id);
    QList<DBIF_SetupColumn> columns;
    for (const dbif::KeyDefinition& key : keys) {
        columns.append(DBIF_SetupColumn(key, connection));
    }
    std::size_t points = 0;
    dbif::SweepArrays arrays;
    const auto copy = [&](const dbif::SweepPoints& read) {
        points = read.count;
        for (std::size_t column = 0; column < keys.size(); ++column) {
            arrays[keys[column].key] = dbif::copy_of(read.columns[column]);
        }
    };
    dbif::read_sweeps(connection, {id}, keys, dbif::SetupsWithoutColumns::Counted, copy);
    return QSharedPointer<DBIF_Setup>(
        new DBIF_Setup(connection, columns, points, std::move(arrays)));
}
