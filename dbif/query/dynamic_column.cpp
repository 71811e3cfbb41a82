#include "dbif/query/dynamic_column.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"
#include "dbif/query/fixed_column.h"

DBIF_DynamicTableColumn::DBIF_DynamicTableColumn(
    dbif::RecordTable table,
    dbif::KeyDefinition definition,
    DBIF_Connection connection)
    : table_(table), definition_(std::move(definition)), connection_(std::move(connection))
{}

QString DBIF_DynamicTableColumn::getName() const
{
    return dbif::to_qt(definition_.name);
}

QString DBIF_DynamicTableColumn::getDataType() const
{
    return dbif::datatype_name(definition_.kind);
}

QString DBIF_DynamicTableColumn::getKey() const
{
    return dbif::to_qt(definition_.key);
}

DBIF_SingleColumnCondition
DBIF_DynamicTableColumn::singleColumnCondition(Comparator comparator, QString value) const
{
    const dbif::ColumnTraits traits;
    return {
        dbif::to_qt(dbif::table_info(table_).dataTable()),
        getKey(),
        comparator,
        std::move(value),
        isDoubleColumn(),
        isDoubleColumn(),
        traits.tolerance,
        traits.epsilon};
}

DBIF_SingleColumnCondition DBIF_DynamicTableColumn::notNull() const
{
    return singleColumnCondition(NOT_NULL, QStringLiteral("0"));
}

namespace dbif {
KeyDefinition
existing_definition(DBIF_Connection& connection, RecordTable table, const QString& key)
{
    const KeyDefinition* definition =
        ColumnStore::of(connection).find(connection, table, to_utf8(key));
    if (definition == nullptr) {
        throw_error(
            "The table \"" + std::string(table_info(table).name) + "\" has no key \"" +
                to_utf8(key) + "\".",
            __FILE__, __LINE__);
    }
    return *definition;
}

bool has_definition(DBIF_Connection& connection, RecordTable table, const QString& key)
{
    return ColumnStore::of(connection).find(connection, table, to_utf8(key)) != nullptr;
}

QString compute_key(const QString& category, const QString& datatype, const QString& name)
{
    const auto kind = value_kind(datatype);
    return kind.has_value() ? to_qt(column_key(to_utf8(category), *kind, to_utf8(name)))
                            : QString();
}
} // namespace dbif

QString DBIF_CatalogEntryColumn::computeKey(const QString& name, const QString& datatype)
{
    return dbif::compute_key(QString(), datatype, name);
}

QString DBIF_MeasurementColumn::computeKey(const QString& name, const QString& datatype)
{
    return dbif::compute_key(QString(), datatype, name);
}

QString
DBIF_DeviceColumn::computeKey(const QString& name, const QString& category, const QString& datatype)
{
    return dbif::compute_key(category, datatype, name);
}

QString DBIF_MeasurementConditionColumn::computeKey(
    const QString& name,
    const QString& category,
    const QString& datatype)
{
    return dbif::compute_key(category, datatype, name);
}

QString DBIF_SetupColumn::computeKey(const QString& name, const QString& datatype, bool isInput)
{
    return dbif::compute_key(
        isInput ? QStringLiteral("IN") : QStringLiteral("OUT"), datatype, name);
}
