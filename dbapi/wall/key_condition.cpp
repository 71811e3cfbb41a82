#include "dbapi/wall/key_condition.h"

#include "dbapi/table_dispatch.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/wall/keyword_split.h"
#include "dbif/host/error_text.h"

#include <type_traits>

namespace {
template <typename Record>
bool make_condition(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& attributes,
    const std::string& value,
    Comparator comparator,
    DBIF_SingleColumnCondition** condition,
    std::string* errors)
{
    dbif::clear_error(errors);
    *condition = nullptr;
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(attributes, &category, &datatype);
    const QString text = dbif::to_qt(value);
    return dbapi::use_column<Record>(
        connection, keyname, category, datatype, dbapi::FixedColumns::ByCategory,
        [&](const auto& column) {
            if constexpr (std::is_same_v<decltype(column), const DBIF_FixedColumn<Record>&>) {
                *condition =
                    new DBIF_SingleColumnCondition(column.singleColumnCondition(comparator, text));
            } else {
                *condition =
                    new DBIF_SingleColumnCondition(column->singleColumnCondition(comparator, text));
            }
        });
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
    return make_condition<DBIF_CatalogEntry>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_Device>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_Die>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_Measurement>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_MeasurementCondition>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_Routine>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    return make_condition<DBIF_Setup>(
        connection, keyname, attributes, value, comparator, condition, errors);
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
    std::string tableErrors;
    const auto made = dbapi::visit_table(tablename, [&](auto record) {
        using Record = typename decltype(record)::type;
        return make_condition<Record>(
            connection, keyname, attributes, value, comparator, &condition, &tableErrors);
    });
    if (!made.value_or(false)) {
        *errors = "The \"" + tablename + "\" table's key: \"" + keyname +
                  "\" was not evaluated to a valid unique database key." +
                  "Database Error(s) occurred: \n" + tableErrors;
        return nullptr;
    }
    return condition;
}
