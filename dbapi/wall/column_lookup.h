#pragma once

#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/record/record_tables.h"

#include <QSharedPointer>

#include <string>
#include <utility>
#include <vector>

// From keywords and resolved keys to the columns that hold their values. No outputs may be null but
// `errors`, without which texts go to the standard error stream. Connections stay the caller's.

namespace dbapi {
/// Columns, each with the position of the keyword that it was found for, from 0.
template <typename Column>
using PlacedColumns = std::vector<std::pair<unsigned int, QSharedPointer<Column>>>;
} // namespace dbapi

/// Builds the condition of a query string (see condition_builder.h, also for who owns it), and
/// finds the column of each keyword under it. Each column is added to the list of its table and
/// kind, so that the lists together have one for each keyword.
///
/// False for a query string that is wrong, for the first keyword that names no column, and on a
/// database error. The lists are then empty, `condition` is null, and a new condition is deleted.
bool dbapi_find_columns_for_keywords( // NOLINT(readability-function-size): one list per kind
    DBIF_Connection& connection,
    const std::vector<std::string>& keywords,
    const std::string& query,
    DBIF_QueryCondition** condition,
    bool* latestOnly,
    dbapi::PlacedColumns<DBIF_CatalogEntryColumn>* catalogEntryColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_CatalogEntry>>* catalogEntryFixedColumns,
    dbapi::PlacedColumns<DBIF_DeviceColumn>* deviceColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Device>>* deviceFixedColumns,
    dbapi::PlacedColumns<DBIF_MeasurementColumn>* measurementColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Measurement>>* measurementFixedColumns,
    dbapi::PlacedColumns<DBIF_MeasurementConditionColumn>* measurementConditionColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_MeasurementCondition>>*
        measurementConditionFixedColumns,
    dbapi::PlacedColumns<DBIF_SetupColumn>* setupColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Setup>>* setupFixedColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Die>>* dieFixedColumns,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Routine>>* routineFixedColumns,
    std::string* errors);

// The column of one resolved key (see keyword_resolution.h) of a table. Exactly one of the two
// results is set on success: the fixed column for a fixed category, otherwise the key's column.
// Both are null on failure: without a text when the table has no such column, and with one on a
// database error. `condition` is not looked at. Nothing is thrown.

/// A column of catalogue entries; the category of a key is not looked at.
bool get_column_for_catalog_entry_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_CatalogEntry>>* fixedColumn,
    QSharedPointer<DBIF_CatalogEntryColumn>* column,
    std::string* errors);
/// A column of devices; without a category, the six are tried in their order.
bool get_column_for_device_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_Device>>* fixedColumn,
    QSharedPointer<DBIF_DeviceColumn>* column,
    std::string* errors);
/// A column of dies, which have fixed columns only.
bool get_column_for_die_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_Die>>* fixedColumn,
    std::string* errors);
/// A column of measurements; the category of a key is not looked at.
bool get_column_for_measurement_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_Measurement>>* fixedColumn,
    QSharedPointer<DBIF_MeasurementColumn>* column,
    std::string* errors);
/// A column of measurement conditions; the category is taken as it is.
bool get_column_for_measurement_condition_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_MeasurementCondition>>* fixedColumn,
    QSharedPointer<DBIF_MeasurementConditionColumn>* column,
    std::string* errors);
/// A column of routines, which have fixed columns only.
bool get_column_for_routine_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_Routine>>* fixedColumn,
    std::string* errors);
/// A column of setups; without a direction, inputs come before outputs.
bool get_column_for_setup_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QSharedPointer<DBIF_FixedColumn<DBIF_Setup>>* fixedColumn,
    QSharedPointer<DBIF_SetupColumn>* column,
    std::string* errors);
