#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"
#include "dbif/connection/connection.h"
#include "dbif/value/data_type.h"

#include <QList>

#include <string>
#include <vector>

// From one keyword to the values stored under it, for the records that a query string selects.
// Error texts go to `errors`, or to the standard error stream when that is null; a keyword whose
// column does not exist fails without a text. A `DBIF_Exception` of the database passes through.

/// The values as text, sorted ascending. `distinct`: each value once.
bool dbapi_get_text_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);

/// The values as objects, which the caller owns.
bool dbapi_get_raw_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    QList<DBIF_DataType*>* values,
    const std::string& query,
    SortOrder order,
    std::string* errors);

// The values of one resolved key of a table; the caller owns the objects. False when the table has
// no such column. For catalogue entries a fixed column of the name comes before a key of that name,
// whatever the category; for the other tables only a fixed category means a fixed column.

bool get_values_for_catalog_entry_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_device_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_die_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_measurement_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_measurement_condition_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_routine_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
bool get_values_for_setup_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors);
