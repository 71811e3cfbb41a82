#include "dbapi/wall/column_lookup.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/read/keyword_read.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/wall/condition_builder.h"
#include "dbapi/words/database_fault.h"
#include "dbif/host/error_text.h"

#include <tuple>

namespace {
/// Stands in for the column of keys where records have none.
struct NoColumn
{};

/// Sets whichever of the two results belongs to the column.
template <typename Column, typename Record>
void set_result(
    DBIF_Connection& connection,
    const dbif::TableColumn& column,
    QSharedPointer<DBIF_FixedColumn<Record>>* fixed,
    QSharedPointer<Column>* key)
{
    if (!column.isKey()) {
        *fixed = QSharedPointer<DBIF_FixedColumn<Record>>::create(
            dbif::fixed_column<Record>(column.fixed()));
    } else if constexpr (!std::is_same_v<Column, NoColumn>) {
        *key = QSharedPointer<Column>::create(column.key(), connection);
    }
}

template <typename Column, typename Record>
bool get_column(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_FixedColumn<Record>>* fixed,
    QSharedPointer<Column>* key,
    std::string* errors)
{
    fixed->clear();
    if (key != nullptr) {
        key->clear();
    }
    dbif::clear_error(errors);
    try {
        const std::string table(dbif::table_info(Record::kTable).name);
        const auto column = dbapi::find_column(connection, table, keyname, category, datatype);
        if (column.has_value()) {
            set_result(connection, *column, fixed, key);
        }
        return column.has_value();
    } catch (const DBIF_Exception& exception) {
        dbif::deliver_error(errors, dbapi::database_fault(exception).text);
        return false;
    }
}

/// The lists of one table: of its keys, and of its fixed columns.
template <typename Column, typename Record>
struct TableLists
{
    dbapi::PlacedColumns<Column>* keys;
    dbapi::PlacedColumns<DBIF_FixedColumn<Record>>* fixed;

    void clear() const
    {
        if (keys != nullptr) {
            keys->clear();
        }
        fixed->clear();
    }

    void add(DBIF_Connection& connection, unsigned int place, const dbif::TableColumn& column) const
    {
        if (column.table() != Record::kTable) {
            return;
        }
        QSharedPointer<DBIF_FixedColumn<Record>> fixedColumn;
        QSharedPointer<Column> key;
        set_result(connection, column, &fixedColumn, &key);
        if (fixedColumn != nullptr) {
            fixed->emplace_back(place, fixedColumn);
        } else {
            keys->emplace_back(place, key);
        }
    }
};
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
    return get_column<NoColumn>(connection, keyname, category, {}, fixedColumn, nullptr, errors);
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
    return get_column<NoColumn>(connection, keyname, category, {}, fixedColumn, nullptr, errors);
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
    const std::tuple lists(
        TableLists<DBIF_CatalogEntryColumn, DBIF_CatalogEntry>{
            catalogEntryColumns, catalogEntryFixedColumns},
        TableLists<DBIF_DeviceColumn, DBIF_Device>{deviceColumns, deviceFixedColumns},
        TableLists<DBIF_MeasurementColumn, DBIF_Measurement>{
            measurementColumns, measurementFixedColumns},
        TableLists<DBIF_MeasurementConditionColumn, DBIF_MeasurementCondition>{
            measurementConditionColumns, measurementConditionFixedColumns},
        TableLists<DBIF_SetupColumn, DBIF_Setup>{setupColumns, setupFixedColumns},
        TableLists<NoColumn, DBIF_Die>{nullptr, dieFixedColumns},
        TableLists<NoColumn, DBIF_Routine>{nullptr, routineFixedColumns});
    const auto clear = [&lists] {
        std::apply([](const auto&... list) { (list.clear(), ...); }, lists);
    };
    clear();
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
    try {
        unsigned int place = 0;
        for (const dbif::TableColumn& column :
             dbapi::columns_for_keywords(connection, keywords, built, *latestOnly)) {
            std::apply(
                [&](const auto&... list) { (list.add(connection, place, column), ...); }, lists);
            ++place;
        }
        *condition = owned.release();
        return true;
    } catch (const dbapi::FaultError& error) {
        reason = error.fault().text;
    } catch (const DBIF_Exception& exception) {
        reason = dbapi::database_fault(exception).text;
    }
    clear();
    dbif::deliver_error(errors, reason);
    return false;
}
