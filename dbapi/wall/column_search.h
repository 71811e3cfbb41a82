#pragma once

#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/record/record_tables.h"
#include "dbif/value/table_column.h"

#include <QSharedPointer>

#include <optional>
#include <string>
#include <vector>

// The searches for the column of a stored key. There are three because keys are told apart by data
// type alone, by category and data type, or by data type and direction. Each sets `result` and
// returns true when the key exists; a data type that is none of the four finds nothing. In the form
// without a data type the first that exists wins, in the order text, double, complex number,
// complex matrix. They throw `DBIF_Exception` on a database error.

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

template <typename T>
bool searchForColumn(DBIF_Connection& connection, const KTString& name, QSharedPointer<T>* result)
{
    return dbapi::search_datatypes(
        connection, dbapi::all_datatypes(),
        [&](const QString& d) { return T::computeKey(dbif::to_qt(name.str()), d); }, result);
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
        connection, {datatype},
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
    return dbapi::search_datatypes(
        connection, dbapi::all_datatypes(),
        [&](const QString& d) {
            return T::computeKey(dbif::to_qt(name.str()), dbif::to_qt(category), d);
        },
        result);
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
        connection, {datatype},
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
