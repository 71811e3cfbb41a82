#include "dbif/condition/condition.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/host/host_string.h"

namespace {
/// The names under which a comparison refers to its table: keys stand in the data table.
QString table_of(const dbif::ColumnComparison& comparison)
{
    const dbif::TableFacts& f = dbif::facts(comparison.table);
    return dbif::to_qt(comparison.isKey ? f.dataTable() : std::string(f.name));
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
            columns.add(dbif::to_qt(comparison.column));
        }
    });
}
