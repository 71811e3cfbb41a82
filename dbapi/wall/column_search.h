#pragma once

#include "dbapi/table_dispatch.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/record/record_tables.h"

#include <QSharedPointer>

#include <array>
#include <optional>
#include <string>

// The searches for the column of a stored key. There are three because keys are told apart by data
// type alone, by category and data type, or by data type and direction. Each sets `result` and
// returns true when the key exists; a data type that is none finds nothing. Without a data type the
// first that exists wins, in the order text, double, complex number, complex matrix. They throw
// `DBIF_Exception` on a database error.

namespace dbapi {
/// The first of the given data types for which the key that `computeKey` makes exists.
template <typename Column, typename ComputeKey>
bool search_datatypes(
    DBIF_Connection& connection,
    const std::string& datatype,
    const ComputeKey& computeKey,
    QSharedPointer<Column>* result)
{
    const std::array kDatatypes{
        &TEXT_DATATYPE, &DOUBLE_DATATYPE, &COMPLEX_NUMBER_DATATYPE, &COMPLEX_MATRIX_DATATYPE};
    const QString wanted = dbif::to_qt(datatype);
    for (const QString* candidate : kDatatypes) {
        if (!wanted.isEmpty() && wanted != *candidate) {
            continue;
        }
        const QString key = computeKey(*candidate);
        if (Column::hasColumn(connection, key)) {
            *result = Column::get(connection, key);
            return true;
        }
    }
    return false;
}
} // namespace dbapi

// NOLINTBEGIN(readability-identifier-naming): published names.

template <typename T>
bool searchForColumn(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& datatype,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, datatype,
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d); }, result);
}

template <typename T>
bool searchForColumn(DBIF_Connection& connection, const KTString& name, QSharedPointer<T>* result)
{
    return searchForColumn<T>(connection, name, std::string(), result);
}

template <typename T>
bool searchForColumn2(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, datatype,
        [&](const QString& d) {
            return T::computeKey(dbif::to_qt(name.str()), dbif::to_qt(category), d);
        },
        result);
}

template <typename T>
bool searchForColumn2(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& category,
    QSharedPointer<T>* result)
{
    return searchForColumn2<T>(connection, name, category, std::string(), result);
}

template <typename T>
bool searchForColumn3(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& datatype,
    bool isInput,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, datatype,
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d, isInput); },
        result);
}

template <typename T>
bool searchForColumn3(
    DBIF_Connection& connection,
    const KTString& name,
    bool isInput,
    QSharedPointer<T>* result)
{
    return searchForColumn3<T>(connection, name, std::string(), isInput, result);
}

// NOLINTEND(readability-identifier-naming)

namespace dbapi {
// The column of a key, with what each table makes of the category: catalogue entries and
// measurements ignore it; of a device key without one the six categories are tried in their order;
// a condition key's is taken as it is, also when empty; a setup key's is its direction, and without
// one inputs come before outputs.
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_CatalogEntryColumn>* column);
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_DeviceColumn>* column);
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_MeasurementColumn>* column);
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_MeasurementConditionColumn>* column);
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_SetupColumn>* column);

/// The fixed column of exactly that name; nothing when the table has none.
template <typename Record>
std::optional<DBIF_FixedColumn<Record>> find_fixed_column(const std::string& keyname)
{
    const QString name = dbif::to_qt(keyname);
    for (const DBIF_FixedColumn<Record>& column : Record::fixedColumns()) {
        if (column.getColumnName() == name) {
            return column;
        }
    }
    return std::nullopt;
}

/// Whether a resolved key is a fixed column by its category.
enum class FixedColumns {
    /// Fixed columns are looked at for a fixed category only.
    ByCategory,
    /// Fixed columns are looked at first, whatever the category.
    First
};

/// Finds the column of a resolved key in a table, and calls `use` with it: a fixed column
/// (`const DBIF_FixedColumn<Record>&`) or a key's column (`QSharedPointer<...>`). Returns whether
/// there is one.
template <typename Record, typename Use>
bool use_column(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    [[maybe_unused]] const std::string& datatype,
    FixedColumns fixedColumns,
    const Use& use)
{
    const bool isFixed = dbapi_is_category_fixed(category);
    if (isFixed || fixedColumns == FixedColumns::First) {
        if (const auto column = find_fixed_column<Record>(keyname)) {
            use(*column);
            return true;
        }
    }
    if constexpr (HasKeys<Record>) {
        QSharedPointer<typename Record::KeyColumn> column;
        if (!isFixed && search_key(connection, keyname, category, datatype, &column)) {
            use(column);
            return true;
        }
    }
    return false;
}
} // namespace dbapi
