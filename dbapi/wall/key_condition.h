#pragma once

#include "dbif/condition/column_condition.h"
#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"

#include <string>

/// The condition that compares a resolved key with a value; the caller owns it. Null on failure,
/// with the reason in `errors`. Throws `DBIF_Exception` on a database error and for a value that
/// the column cannot be compared with.
DBIF_SingleColumnCondition* dbapi_make_single_column_condition_for_resolved_keyname_tablename(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    KTString* errors);

// The same for one table. False when the table has no such column.

bool make_single_column_condition_for_catalog_entry_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_device_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_die_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_measurement_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_measurement_condition_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_routine_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
bool make_single_column_condition_for_setup_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors);
