#include "dbapi/wall/column_lookup.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/table_dispatch.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/wall/condition_builder.h"
#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/keyword_split.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"

#include <set>
#include <tuple>
#include <type_traits>

namespace {
/// Calls `use` with the column of a resolved key; a database error becomes a text.
template <typename Record, typename Use>
bool look_up(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    std::string* errors,
    const Use& use)
{
    try {
        return dbapi::use_column<Record>(
            connection, keyname, category, datatype, dbapi::FixedColumns::ByCategory, use);
    } catch (const DBIF_Exception& exception) {
        std::string text;
        dbapi_build_error_string_from_dbif_exception(exception, &text);
        dbif::deliver_error(errors, text);
        return false;
    }
}

/// Sets whichever of the two results belongs to the column.
template <typename Record, typename Column>
bool get_column(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_FixedColumn<Record>>* fixedColumn,
    [[maybe_unused]] QSharedPointer<Column>* column,
    std::string* errors)
{
    fixedColumn->clear();
    if (column != nullptr) {
        column->clear();
    }
    dbif::clear_error(errors);
    return look_up<Record>(connection, keyname, category, datatype, errors, [&](const auto& found) {
        if constexpr (std::is_same_v<decltype(found), const DBIF_FixedColumn<Record>&>) {
            *fixedColumn = QSharedPointer<DBIF_FixedColumn<Record>>::create(found);
        } else {
            *column = found;
        }
    });
}

/// The twelve lists, found by the type of the column.
using ColumnLists = std::tuple<
    dbapi::PlacedColumns<DBIF_CatalogEntryColumn>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_CatalogEntry>>*,
    dbapi::PlacedColumns<DBIF_DeviceColumn>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Device>>*,
    dbapi::PlacedColumns<DBIF_MeasurementColumn>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Measurement>>*,
    dbapi::PlacedColumns<DBIF_MeasurementConditionColumn>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_MeasurementCondition>>*,
    dbapi::PlacedColumns<DBIF_SetupColumn>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Setup>>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Die>>*,
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Routine>>*>;

void clear_lists(const ColumnLists& lists)
{
    std::apply([](auto*... list) { (list->clear(), ...); }, lists);
}

template <typename Record>
void add_to_list(
    unsigned int position,
    const DBIF_FixedColumn<Record>& column,
    const ColumnLists& lists)
{
    using Fixed = DBIF_FixedColumn<Record>;
    std::get<dbapi::PlacedColumns<Fixed>*>(lists)->emplace_back(
        position, QSharedPointer<Fixed>::create(column));
}

template <typename Column>
void add_to_list(
    unsigned int position,
    const QSharedPointer<Column>& column,
    const ColumnLists& lists)
{
    std::get<dbapi::PlacedColumns<Column>*>(lists)->emplace_back(position, column);
}

/// Finds the column of one resolved keyword and puts it into its list.
bool place_column(
    DBIF_Connection& connection,
    unsigned int position,
    const dbapi::ResolvedKey& key,
    const ColumnLists& lists,
    std::string* errors)
{
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(key.attributes, &category, &datatype);
    std::string reason;
    const auto found = dbapi::visit_table(key.tablename, [&](auto record) {
        using Record = typename decltype(record)::type;
        const auto place = [&](const auto& column) {
            add_to_list(position, column, lists);
        };
        return look_up<Record>(connection, key.keyname, category, datatype, &reason, place);
    });
    if (!found.has_value()) {
        *errors = "Error: Unexpected, Invalid Database table name encountered: \"" + key.tablename +
                  "\". \n";
        return false;
    }
    if (!*found && !reason.empty()) {
        *errors = "Error(s) occurred: \n" + reason;
    }
    return *found;
}

bool find_columns(
    DBIF_Connection& connection,
    const std::vector<std::string>& keywords,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    const ColumnLists& lists,
    std::string* errors)
{
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    std::map<std::string, std::set<std::string>> resolved;
    if (!dbapi::resolve_set_of_keywords_by_definition(
            connection, std::set<std::string>(keywords.begin(), keywords.end()), &resolved,
            condition, latestOnly, errors)) {
        return false;
    }
    for (unsigned int i = 0; i < keywords.size(); ++i) {
        dbapi::ResolvedKey key;
        std::string reason;
        if (!dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
                keywords[i], resolved, &key.keyname, &key.tablename, &key.attributes, errors)) {
            return false;
        }
        if (!place_column(connection, i, key, lists, &reason)) {
            const bool isTableUnknown = reason.starts_with("Error: Unexpected");
            *errors = isTableUnknown ? reason
                                     : "Error: Failed to resolve keyword \"" + keywords[i] +
                                           "\" to a valid database key. \n" + reason;
            return false;
        }
    }
    return true;
}
} // namespace

bool get_column_for_catalog_entry_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_CatalogEntry>>* fixedColumn,
    QSharedPointer<DBIF_CatalogEntryColumn>* column,
    std::string* errors)
{
    return get_column(connection, keyname, category, datatype, fixedColumn, column, errors);
}

bool get_column_for_device_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_Device>>* fixedColumn,
    QSharedPointer<DBIF_DeviceColumn>* column,
    std::string* errors)
{
    return get_column(connection, keyname, category, datatype, fixedColumn, column, errors);
}

bool get_column_for_die_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_Die>>* fixedColumn,
    std::string* errors)
{
    return get_column(
        connection, keyname, category, "", fixedColumn,
        static_cast<QSharedPointer<DBIF_DynamicTableColumn>*>(nullptr), errors);
}

bool get_column_for_measurement_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_Measurement>>* fixedColumn,
    QSharedPointer<DBIF_MeasurementColumn>* column,
    std::string* errors)
{
    return get_column(connection, keyname, category, datatype, fixedColumn, column, errors);
}

bool get_column_for_measurement_condition_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_MeasurementCondition>>* fixedColumn,
    QSharedPointer<DBIF_MeasurementConditionColumn>* column,
    std::string* errors)
{
    return get_column(connection, keyname, category, datatype, fixedColumn, column, errors);
}

bool get_column_for_routine_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_Routine>>* fixedColumn,
    std::string* errors)
{
    return get_column(
        connection, keyname, category, "", fixedColumn,
        static_cast<QSharedPointer<DBIF_DynamicTableColumn>*>(nullptr), errors);
}

bool get_column_for_setup_from_resolved_keyname(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    DBIF_QueryCondition* /*condition*/,
    QSharedPointer<DBIF_FixedColumn<DBIF_Setup>>* fixedColumn,
    QSharedPointer<DBIF_SetupColumn>* column,
    std::string* errors)
{
    return get_column(connection, keyname, category, datatype, fixedColumn, column, errors);
}

bool dbapi_find_columns_for_keywords( // NOLINT(readability-function-size)
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
    std::string* errors)
{
    const ColumnLists lists(
        catalogEntryColumns, catalogEntryFixedColumns, deviceColumns, deviceFixedColumns,
        measurementColumns, measurementFixedColumns, measurementConditionColumns,
        measurementConditionFixedColumns, setupColumns, setupFixedColumns, dieFixedColumns,
        routineFixedColumns);
    clear_lists(lists);
    dbif::clear_error(errors);
    *condition = nullptr;
    DBIF_QueryCondition* built = nullptr;
    std::string reason;
    if (!dbapi_get_query_str_dbif_query_condition_ptr(
            connection, query, &built, latestOnly, &reason)) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    dbapi::CallCondition owned(built);
    bool isFound = false;
    try {
        isFound = find_columns(connection, keywords, built, *latestOnly, lists, &reason);
    } catch (const DBIF_Exception& exception) {
        dbapi_build_error_string_from_dbif_exception(exception, &reason);
    }
    if (!isFound) {
        clear_lists(lists);
        dbif::deliver_error(errors, reason);
        return false;
    }
    *condition = owned.release();
    return true;
}
