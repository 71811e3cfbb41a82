#pragma once

#include "dbif/condition/column_condition.h"
#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"

#include <string>

// From a resolved key (see keyword_resolution.h) and a value to the condition that compares them.
//
// `attributes` is an attribute string (see vocabulary.h). `value` is one value, in UTF-8 and for
// numbers in plain decimal notation; for `IN` and `NOT_IN` it is a list as column_condition.h
// tells. The connection is asked for the definitions of keys only, and stays the caller's. All
// throw `DBIF_Exception` on a database error and for a value that the column cannot be compared
// with.

/// The condition for a key of any table; the caller deletes it. Null when the table has no such
/// column, with the reason in `errors`, which must not be null and is emptied first.
DBIF_SingleColumnCondition* dbapi_make_single_column_condition_for_resolved_keyname_tablename(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    KTString* errors);

// The same for one table. True, with the condition in `condition`, when the table has the column;
// otherwise false, with null there. `errors` is emptied, and gets no text; it may be null.

/// A key or fixed column of catalogue entries; the category of a key is not looked at.
bool make_single_column_condition_for_catalog_entry_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A key or fixed column of devices; without a category, the six are tried in their order.
bool make_single_column_condition_for_device_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A fixed column of dies.
bool make_single_column_condition_for_die_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A key or fixed column of measurements; the category of a key is not looked at.
bool make_single_column_condition_for_measurement_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A key or fixed column of measurement conditions; the category is taken as it is.
bool make_single_column_condition_for_measurement_condition_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A fixed column of routines.
bool make_single_column_condition_for_routine_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
/// A key or fixed column of setups; without a direction, inputs come before outputs.
bool make_single_column_condition_for_setup_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
