#include "dbif/condition/condition.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/host/host_string.h"

namespace {
QString table_of(const dbif::ColumnComparison& comparison)
{
    return dbif::to_qt(comparison.column.tableName());
}
} // namespace

QString DBIF_QueryCondition::generateSelectionCriteria(DBIF_Connection connection) const
{
    return dbif::criteria(tree(false), std::move(connection)).toQt();
}

void DBIF_QueryCondition::addTableToSet(QSet<QString>& tables) const
{
    tree(false).forEachComparison([&tables](const dbif::ColumnComparison& comparison) {
        tables.insert(table_of(comparison));
    });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): a published signature
void DBIF_QueryCondition::columnSetFor(QString table, DBIF_UniqueStringList& columns) const
{
    tree(false).forEachComparison([&](const dbif::ColumnComparison& comparison) {
        if (table_of(comparison) == table) {
            columns.add(dbif::to_qt(comparison.column.uniqueName()));
        }
    });
}
