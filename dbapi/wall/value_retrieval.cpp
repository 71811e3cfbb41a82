#include "dbapi/wall/value_retrieval.h"

#include "dbapi/read/keyword_read.h"
#include "dbapi/wall/column_search.h"
#include "dbif/host/error_text.h"
#include "dbif/retrieval/vanto_query.h"

#include <optional>
#include <utility>

namespace {
/// The read of a keyword's values; nothing when there is none, with the reason delivered.
std::optional<dbif::ColumnRead> read_for(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    const std::string& query,
    SortOrder order,
    std::string* errors)
{
    dbif::clear_error(errors);
    try {
        const dbapi::Selection selection = dbapi::select_records_of_call(connectionName, query);
        return dbapi::read_of_keyword(selection, keyword, distinct, order);
    } catch (const dbapi::FaultError& error) {
        dbif::deliver_error(errors, error.fault().text);
        return std::nullopt;
    }
}

QList<DBIF_DataType*> read_objects(dbif::ColumnRead read)
{
    const dbif::TableColumn column = read.columns.front();
    const dbif::QueryResult result = dbif::read_columns(std::move(read));
    return dbif::value_objects(
        result.columns.front(),
        column.isKey() ? dbif::datatype_name(column.kind()) : TEXT_DATATYPE);
}

/// The column that the words of a resolved key name. Of catalogue entries, a fixed column comes
/// first, whatever the category.
std::optional<dbif::TableColumn> column_of_values(
    DBIF_Connection& connection,
    const std::string& tablename,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype)
{
    const dbif::TableInfo& entries = dbif::table_info(dbif::RecordTable::CatalogEntry);
    const dbif::FixedColumnInfo* fixed =
        tablename == entries.name ? dbif::find_fixed_column(entries, keyname) : nullptr;
    return fixed != nullptr
               ? std::optional<dbif::TableColumn>({entries.table, *fixed})
               : dbapi::find_column(connection, tablename, keyname, category, datatype);
}

bool get_values( // NOLINT(readability-function-size): the published form of a retrieval
    bool distinct,
    DBIF_Connection& connection,
    const std::string& tablename,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    const DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors)
{
    values->clear();
    dbif::clear_error(errors);
    const auto column = column_of_values(connection, tablename, keyname, category, datatype);
    if (!column.has_value()) {
        return false;
    }
    dbif::ColumnRead read(connection, {*column});
    read.latestOnly = latestOnly;
    if (condition != nullptr) {
        read.condition = condition->tree(false);
    }
    *values = read_objects(dbapi::values_read(std::move(read), distinct, order));
    return true;
}
} // namespace

bool dbapi_get_text_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    auto read = read_for(distinct, connectionName, keyword, query, ASCENDING, errors);
    if (!read.has_value()) {
        return false;
    }
    dbif::QueryResult result = dbif::read_columns(std::move(*read));
    *values = dbif::take_texts(&result.columns.front());
    return true;
}

bool dbapi_get_raw_values_for_unresolved_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    QList<DBIF_DataType*>* values,
    const std::string& query,
    SortOrder order,
    std::string* errors)
{
    values->clear();
    auto read = read_for(distinct, connectionName, keyword, query, order, errors);
    if (!read.has_value()) {
        return false;
    }
    *values = read_objects(std::move(*read));
    return true;
}

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
    std::string* errors)
{
    return get_values(
        distinct, connection, "catalog_entry", keyname, category, datatype, condition, values,
        order, latestOnly, errors);
}

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
    std::string* errors)
{
    return get_values(
        distinct, connection, "device", keyname, category, datatype, condition, values, order,
        latestOnly, errors);
}

bool get_values_for_die_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors)
{
    return get_values(
        distinct, connection, "die", keyname, category, {}, condition, values, order, latestOnly,
        errors);
}

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
    std::string* errors)
{
    return get_values(
        distinct, connection, "measurement", keyname, category, datatype, condition, values, order,
        latestOnly, errors);
}

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
    std::string* errors)
{
    return get_values(
        distinct, connection, "measurement_condition", keyname, category, datatype, condition,
        values, order, latestOnly, errors);
}

bool get_values_for_routine_from_resolved_keyname(
    bool distinct,
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    DBIF_QueryCondition* condition,
    QList<DBIF_DataType*>* values,
    SortOrder order,
    bool latestOnly,
    std::string* errors)
{
    return get_values(
        distinct, connection, "routine", keyname, category, {}, condition, values, order,
        latestOnly, errors);
}

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
    std::string* errors)
{
    return get_values(
        distinct, connection, "setup", keyname, category, datatype, condition, values, order,
        latestOnly, errors);
}
