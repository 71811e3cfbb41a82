#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"
#include "dbif/connection/connection.h"
#include "dbif/value/data_type.h"

#include <QList>

#include <string>
#include <vector>

// From one keyword to the values stored under it, for the records that a query string selects: one
// for each record, or point of a setup, that has a value. Texts are UTF-8.
//
// `values` must not be null and is emptied first. On failure it stays empty, and the text goes to
// `errors`, or to the standard error stream when that is null; a keyword whose column does not
// exist fails with an empty text. A `DBIF_Exception` of the database passes through.
//
// The calls by a connection's name work on the connection and the condition that the cache holds
// for that name and query string, and otherwise on new ones. They do not bring the cache up to
// date: the calls of db_values.h do, and are what a program usually wants.

/// The values as text, sorted ascending: numbers by value, texts byte by byte. With `distinct`,
/// each value once.
bool dbapi_get_text_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);

/// The values as objects of the key's data type, which the caller deletes; those of a fixed column
/// are texts. `order` says how they are sorted; `UNSORTED` leaves them as the database gives them.
bool dbapi_get_raw_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    QList<DBIF_DataType*>* values,
    const std::string& query,
    SortOrder order,
    std::string* errors);

// The values of one resolved key of a table, as objects which the caller deletes.
//
// `keyname`, `category` and `datatype` are those that resolving a keyword gives (see
// keyword_resolution.h); the last two may be empty where that leaves them open. A fixed category
// (`dbapi_is_category_fixed`) means a fixed column. `condition` restricts the records; null selects
// all. With `latestOnly`, superseded records do not count. Condition and connection stay the
// caller's.
//
// False, without a text, when the table has no such column.

/// Values of catalogue entries. Here a fixed column of the name comes before a key of that name,
/// whatever the category. Categories of keys are not looked at.
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
/// Values of devices. Without a category, the six categories are tried in their order.
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
/// Values of dies, which have fixed columns only.
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
/// Values of measurements. Categories of keys are not looked at.
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
/// Values of measurement conditions. The category is taken as it is, also when it is empty.
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
/// Values of routines, which have fixed columns only.
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
/// Values of setups, one for each point. The category is the direction, "IN" or "OUT"; without
/// one, an input of the name comes before an output.
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
