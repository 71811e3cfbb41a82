#include "dbapi/wall/key_condition.h"

#include "dbapi/query/query_condition.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/words/keyword_parts.h"
#include "dbif/host/error_text.h"

namespace {
bool make_condition(
    DBIF_Connection& connection,
    const std::string& tablename,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    dbif::clear_error(errors);
    *condition = nullptr;
    const dbapi::KeyAttributes split = dbapi::split_attributes(attributes);
    const auto column =
        dbapi::find_column(connection, tablename, keyname, split.category, split.datatype);
    if (column.has_value()) {
        *condition = new DBIF_SingleColumnCondition(*column, comparator, value);
    }
    return column.has_value();
}
} // namespace

bool make_single_column_condition_for_catalog_entry_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "catalog_entry", keyname, attributes, value, comparator, condition, errors);
}

bool make_single_column_condition_for_device_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "device", keyname, attributes, value, comparator, condition, errors);
}

bool make_single_column_condition_for_die_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "die", keyname, attributes, value, comparator, condition, errors);
}

bool make_single_column_condition_for_measurement_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "measurement", keyname, attributes, value, comparator, condition, errors);
}

bool make_single_column_condition_for_measurement_condition_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "measurement_condition", keyname, attributes, value, comparator, condition,
        errors);
}

bool make_single_column_condition_for_routine_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "routine", keyname, attributes, value, comparator, condition, errors);
}

bool make_single_column_condition_for_setup_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    return make_condition(
        connection, "setup", keyname, attributes, value, comparator, condition, errors);
}

DBIF_SingleColumnCondition* dbapi_make_single_column_condition_for_resolved_keyname_tablename(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    KTString* errors)
{
    errors->clear();
    DBIF_SingleColumnCondition* condition = nullptr;
    std::string ignored;
    if (!make_condition(
            connection, tablename, keyname, attributes, value, comparator, &condition, &ignored)) {
        *errors = dbapi::no_column_text(tablename, keyname);
    }
    return condition;
}
