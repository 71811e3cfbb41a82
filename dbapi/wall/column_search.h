#pragma once

#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/record/record_tables.h"
#include "dbif/value/table_column.h"

#include <QSharedPointer>

#include <optional>
#include <string>
#include <vector>

// The searches for the column of a stored key, by name and by what else tells the keys of a table
// apart:
//
//  - `searchForColumn`: the data type (catalogue entries, measurements);
//  - `searchForColumn2`: category and data type (devices, measurement conditions);
//  - `searchForColumn3`: data type and direction (setups).
//
// Each sets `result`, which must not be null, and returns true when the key exists; otherwise
// `result` stays. A data type that is none of the four finds nothing. In the form without a data
// type the first that exists wins, in the order text, double, complex number, complex matrix. Names
// are compared with letter case. The definitions of keys are kept with the connection, so that
// mostly no statement runs; `DBIF_Exception` is thrown on a database error.

namespace dbapi {
/// The four data types, in the order in which a key given without one is looked for.
const std::vector<std::string>& all_datatypes();

/// The first of the given data types for which the key that `computeKey` makes exists.
template <typename Column, typename ComputeKey>
bool search_datatypes(
    DBIF_Connection& connection,
    const std::vector<std::string>& datatypes,
    const ComputeKey& computeKey,
    QSharedPointer<Column>* result)
{
    for (const std::string& datatype : datatypes) {
        const QString key = computeKey(dbif::to_qt(datatype));
        if (Column::hasColumn(connection, key)) {
            *result = Column::get(connection, key);
            return true;
        }
    }
    return false;
}
} // namespace dbapi

// NOLINTBEGIN(readability-identifier-naming): published names.

/// The key of a name and data type; `T` is the class of the column, such as
/// `DBIF_MeasurementColumn`.
template <typename T>
bool searchForColumn(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& datatype,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, {datatype},
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d); }, result);
}

/// The key of a name, of whichever data type.
template <typename T>
bool searchForColumn(DBIF_Connection& connection, const KTString& name, QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, dbapi::all_datatypes(),
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d); }, result);
}

/// The key of a name, category and data type. The category is in short form and may be empty.
template <typename T>
bool searchForColumn2(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, {datatype},
        [&](const QString& d) {
            return T::computeKey(dbif::to_qt(name.str()), dbif::to_qt(category), d);
        },
        result);
}

/// The key of a name and category, of whichever data type.
template <typename T>
bool searchForColumn2(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& category,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, dbapi::all_datatypes(),
        [&](const QString& d) {
            return T::computeKey(dbif::to_qt(name.str()), dbif::to_qt(category), d);
        },
        result);
}

/// The key of a name, data type and direction: an input of setups, or an output.
template <typename T>
bool searchForColumn3(
    DBIF_Connection& connection,
    const KTString& name,
    const std::string& datatype,
    bool isInput,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, {datatype},
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d, isInput); },
        result);
}

/// The key of a name and direction, of whichever data type.
template <typename T>
bool searchForColumn3(
    DBIF_Connection& connection,
    const KTString& name,
    bool isInput,
    QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, dbapi::all_datatypes(),
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d, isInput); },
        result);
}

// NOLINTEND(readability-identifier-naming)

namespace dbapi {
/// The column that the words of a resolved key name; nothing when the table has none. A fixed
/// category means a fixed column, any other a stored key, with what each table makes of it:
/// catalogue entries and measurements ignore it; of a device key without one the six categories are
/// tried in their order; a condition key's is taken as it is, also when empty; a setup key's is its
/// direction, and without one inputs come before outputs. Throws `DBIF_Exception`.
std::optional<dbif::TableColumn> find_column(
    DBIF_Connection& connection,
    const std::string& tablename,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype);
} // namespace dbapi
