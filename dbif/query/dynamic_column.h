#pragma once

#include "dbif/condition/column_condition.h"
#include "dbif/connection/connection.h"
#include "dbif/value/key_definition.h"

#include <QSharedPointer>
#include <QString>

/// A key that users defined for the records of one table, with a handle to the connection that it
/// was read from. A copy of the definition: a later change in the database does not show here.
class DBIF_DynamicTableColumn
{
public:
    /// The name as the users gave it.
    [[nodiscard]] QString getName() const;
    /// The published name of its data type, such as "DOUBLE".
    [[nodiscard]] QString getDataType() const;
    /// The unique key of the column within its table: category (empty where the table's keys have
    /// none), data type and name, joined by "|", as in "PHYSICAL|DOUBLE|W".
    [[nodiscard]] QString getKey() const;

    /// Tells whether the data type is "DOUBLE", so that values compare as numbers.
    [[nodiscard]] bool isDoubleColumn() const
    {
        return definition_.kind == dbif::ValueKind::Double;
    }

    [[nodiscard]] bool isTextColumn() const { return definition_.kind == dbif::ValueKind::Text; }

    /// A handle to the connection that the key was read from.
    [[nodiscard]] DBIF_Connection getConnection() const { return connection_; }

    /// The comparison of this key with a value, as `DBIF_SingleColumnCondition` reads it. Throws
    /// `DBIF_Exception` when the key holds numbers and the value is none, when a list of texts is
    /// malformed, and when complex values are to be ordered.
    [[nodiscard]] DBIF_SingleColumnCondition
    singleColumnCondition(Comparator comparator, QString value) const;
    /// The condition that the record has a value of this key.
    [[nodiscard]] DBIF_SingleColumnCondition notNull() const;

    /// The definition as it was read; valid as long as this object.
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
/// The definition of the unique key; throws `DBIF_Exception` naming table and key when there is
/// none, and on a database error.
KeyDefinition
existing_definition(DBIF_Connection& connection, RecordTable table, const QString& key);
/// Tells whether the key is defined. A key that is not known is looked for again once the database
/// may have changed. Throws `DBIF_Exception` on a database error.
bool has_definition(DBIF_Connection& connection, RecordTable table, const QString& key);
/// The unique key of these parts; empty, which no column has, when `datatype` is not a published
/// data type.
QString compute_key(const QString& category, const QString& datatype, const QString& name);

/// The operations that the five classes of dynamic columns share.
template <typename Column, RecordTable table>
class DynamicColumnOf : public DBIF_DynamicTableColumn
{
public:
    static constexpr RecordTable kTable = table;

    /// Tells whether the table has this unique key. Throws `DBIF_Exception` on a database error.
    static bool hasColumn(DBIF_Connection& connection, const QString& key)
    {
        return has_definition(connection, table, key);
    }

    /// The column of this unique key. Throws `DBIF_Exception` naming table and key when there is
    /// none, and on a database error.
    static QSharedPointer<Column> get(DBIF_Connection& connection, const QString& key)
    {
        return QSharedPointer<Column>(
            new Column(existing_definition(connection, table, key), connection));
    }

    /// A column with a definition that the caller has read from the connection.
    DynamicColumnOf(KeyDefinition definition, DBIF_Connection connection)
        : DBIF_DynamicTableColumn(table, std::move(definition), std::move(connection))
    {}
};
} // namespace dbif

/// A key of catalogue entries. `computeKey` gives the unique key of a name and a data type; empty
/// when the data type is none.
class DBIF_CatalogEntryColumn
    : public dbif::DynamicColumnOf<DBIF_CatalogEntryColumn, dbif::RecordTable::CatalogEntry>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype);
};

/// A key of measurements; `computeKey` as above.
class DBIF_MeasurementColumn
    : public dbif::DynamicColumnOf<DBIF_MeasurementColumn, dbif::RecordTable::Measurement>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype);
};

/// A key of devices, whose keys belong to a category, such as one of those below.
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

/// A key of measurement conditions, whose keys belong to a category.
class DBIF_MeasurementConditionColumn
    : public dbif::
          DynamicColumnOf<DBIF_MeasurementConditionColumn, dbif::RecordTable::MeasurementCondition>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString
    computeKey(const QString& name, const QString& category, const QString& datatype);
};

/// A key of setups: an array with a value per point, which is an input or an output of the
/// measurement.
class DBIF_SetupColumn : public dbif::DynamicColumnOf<DBIF_SetupColumn, dbif::RecordTable::Setup>
{
public:
    using DynamicColumnOf::DynamicColumnOf;
    static QString computeKey(const QString& name, const QString& datatype, bool isInput);

    /// Tells whether the key is an input (category "IN") and not an output ("OUT").
    [[nodiscard]] bool isInput() const { return definition().isInput(); }
};
