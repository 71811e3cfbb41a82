#pragma once

#include "dbif/condition/column_condition.h"
#include "dbif/connection/connection.h"
#include "dbif/value/key_definition.h"

#include <QSharedPointer>
#include <QString>

/// A key that users defined for the records of one table, with the connection that it was read
/// from.
class DBIF_DynamicTableColumn
{
public:
    [[nodiscard]] QString getName() const;
    /// One of the published data-type texts.
    [[nodiscard]] QString getDataType() const;
    /// The unique key of the column within its table.
    [[nodiscard]] QString getKey() const;

    [[nodiscard]] bool isDoubleColumn() const
    {
        return definition_.kind == dbif::ValueKind::Double;
    }

    [[nodiscard]] bool isTextColumn() const { return definition_.kind == dbif::ValueKind::Text; }

    [[nodiscard]] DBIF_Connection getConnection() const { return connection_; }

    /// Throws `DBIF_Exception` when the key holds numbers and the value is none, and when complex
    /// values are to be ordered.
    [[nodiscard]] DBIF_SingleColumnCondition
    singleColumnCondition(Comparator comparator, QString value) const;
    /// The condition that the record has a value of this key.
    [[nodiscard]] DBIF_SingleColumnCondition notNull() const;

    [[nodiscard]] const dbif::KeyDefinition& definition() const { return definition_; }

protected:
    DBIF_DynamicTableColumn(
        dbif::RecordTable table,
        dbif::KeyDefinition definition,
        DBIF_Connection connection);
    ~DBIF_DynamicTableColumn() = default;
    DBIF_DynamicTableColumn(const DBIF_DynamicTableColumn&) = default;
    DBIF_DynamicTableColumn& operator=(const DBIF_DynamicTableColumn&) = default;
    DBIF_DynamicTableColumn(DBIF_DynamicTableColumn&&) = default;
    DBIF_DynamicTableColumn& operator=(DBIF_DynamicTableColumn&&) = default;

private:
    dbif::RecordTable table_;
    dbif::KeyDefinition definition_;
    DBIF_Connection connection_;
};

namespace dbif {
/// The definition of a key; throws `DBIF_Exception` naming it when there is none.
KeyDefinition
existing_definition(DBIF_Connection& connection, RecordTable table, const QString& key);
bool has_definition(DBIF_Connection& connection, RecordTable table, const QString& key);
/// The unique key of a column; empty, which no column has, for a data type that is none.
QString compute_key(const QString& category, const QString& datatype, const QString& name);

/// What the five classes of dynamic columns share.
template <typename Column, RecordTable table>
class DynamicColumnOf : public DBIF_DynamicTableColumn
{
public:
    static constexpr RecordTable kTable = table;

    static bool hasColumn(DBIF_Connection& connection, const QString& key)
    {
        return has_definition(connection, table, key);
    }

    /// Throws `DBIF_Exception` when there is no such key.
    static QSharedPointer<Column> get(DBIF_Connection& connection, const QString& key)
    {
        return QSharedPointer<Column>(
            new Column(existing_definition(connection, table, key), connection));
    }

    DynamicColumnOf(KeyDefinition definition, DBIF_Connection connection)
        : DBIF_DynamicTableColumn(table, std::move(definition), std::move(connection))
    {}
};
} // namespace dbif

class DBIF_CatalogEntryColumn
    : public dbif::DynamicColumnOf<DBIF_CatalogEntryColumn, dbif::RecordTable::CatalogEntry>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype);
};

class DBIF_MeasurementColumn
    : public dbif::DynamicColumnOf<DBIF_MeasurementColumn, dbif::RecordTable::Measurement>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype);
};

class DBIF_DeviceColumn : public dbif::DynamicColumnOf<DBIF_DeviceColumn, dbif::RecordTable::Device>
{
public:
    static inline const QString ID_CATEGORY = QStringLiteral("ID");
    static inline const QString PHYSICAL_CATEGORY = QStringLiteral("PHYSICAL");
    static inline const QString CALIBRATION_CATEGORY = QStringLiteral("CALIBRATION");
    static inline const QString NODE_CATEGORY = QStringLiteral("NODE");
    static inline const QString TECHNOLOGY_CATEGORY = QStringLiteral("TECHNOLOGY");
    static inline const QString IS_MEASUREMENT_CATEGORY = QStringLiteral("IS_MEASUREMENT");

    using DynamicColumnOf::DynamicColumnOf;
    static QString
    computeKey(const QString& name, const QString& category, const QString& datatype);
};

class DBIF_MeasurementConditionColumn
    : public dbif::
          DynamicColumnOf<DBIF_MeasurementConditionColumn, dbif::RecordTable::MeasurementCondition>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString
    computeKey(const QString& name, const QString& category, const QString& datatype);
};

class DBIF_SetupColumn : public dbif::DynamicColumnOf<DBIF_SetupColumn, dbif::RecordTable::Setup>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype, bool isInput);

    [[nodiscard]] bool isInput() const { return definition().isInput(); }
};
