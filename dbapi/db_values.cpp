#include "dbapi/db_values.h"

#include "dbapi/column_lookup.h"
#include "dbapi/connection_access.h"
#include "dbapi/public_call.h"
#include "dbapi/value_retrieval.h"
#include "dbif/error_text.h"
#include "dbif/host_string.h"
#include "dbif/query_run.h"
#include "dbif/read_trace.h"
#include "dbif/vanto_query.h"

#include <algorithm>
#include <tuple>

namespace {
bool get_values_for_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    const dbapi::PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    std::vector<std::string> found;
    std::string reason;
    if (!dbapi_get_text_values_for_unresolved_keyword(
            distinct, connectionName, keyword, &found, query, &reason)) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    *values = std::move(found);
    return true;
}

/// A result column of the query, with the position of its keyword.
struct QueryColumn
{
    unsigned int position;
    QString table;
    QString column;
};

template <typename Record>
void add_columns(
    const dbapi::PlacedColumns<DBIF_FixedColumn<Record>>& found,
    std::vector<QueryColumn>* columns)
{
    for (const auto& [position, column] : found) {
        columns->push_back({position, Record::MASTER_TABLE_NAME, column->getColumnName()});
    }
}

template <typename Record>
void add_columns(
    const dbapi::PlacedColumns<typename Record::KeyColumn>& found,
    std::vector<QueryColumn>* columns)
{
    for (const auto& [position, column] : found) {
        columns->push_back({position, Record::DATA_TABLE_NAME, column->getKey()});
    }
}

/// The columns of the keywords, in the order of the keywords, and the condition of the query.
bool find_query_columns(
    DBIF_Connection& connection,
    const std::vector<std::string>& keywords,
    const std::string& query,
    std::vector<QueryColumn>* columns,
    DBIF_QueryCondition** condition,
    bool* latestOnly,
    std::string* errors)
{
    dbapi::PlacedColumns<DBIF_CatalogEntryColumn> catalogEntry;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_CatalogEntry>> catalogEntryFixed;
    dbapi::PlacedColumns<DBIF_DeviceColumn> device;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Device>> deviceFixed;
    dbapi::PlacedColumns<DBIF_MeasurementColumn> measurement;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Measurement>> measurementFixed;
    dbapi::PlacedColumns<DBIF_MeasurementConditionColumn> measurementCondition;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_MeasurementCondition>> measurementConditionFixed;
    dbapi::PlacedColumns<DBIF_SetupColumn> setup;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Setup>> setupFixed;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Die>> dieFixed;
    dbapi::PlacedColumns<DBIF_FixedColumn<DBIF_Routine>> routineFixed;
    if (!dbapi_find_columns_for_keywords(
            connection, keywords, query, condition, latestOnly, &catalogEntry, &catalogEntryFixed,
            &device, &deviceFixed, &measurement, &measurementFixed, &measurementCondition,
            &measurementConditionFixed, &setup, &setupFixed, &dieFixed, &routineFixed, errors)) {
        return false;
    }
    add_columns<DBIF_CatalogEntry>(catalogEntry, columns);
    add_columns<DBIF_CatalogEntry>(catalogEntryFixed, columns);
    add_columns<DBIF_Device>(device, columns);
    add_columns<DBIF_Device>(deviceFixed, columns);
    add_columns<DBIF_Measurement>(measurement, columns);
    add_columns<DBIF_Measurement>(measurementFixed, columns);
    add_columns<DBIF_MeasurementCondition>(measurementCondition, columns);
    add_columns<DBIF_MeasurementCondition>(measurementConditionFixed, columns);
    add_columns<DBIF_Setup>(setup, columns);
    add_columns<DBIF_Setup>(setupFixed, columns);
    add_columns<DBIF_Die>(dieFixed, columns);
    add_columns<DBIF_Routine>(routineFixed, columns);
    std::sort(columns->begin(), columns->end(), [](const QueryColumn& a, const QueryColumn& b) {
        return a.position < b.position;
    });
    return true;
}

std::vector<std::vector<std::string>> read_rows(
    DBIF_Connection& connection,
    const std::vector<QueryColumn>& columns,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool distinct)
{
    DBIF_VantoQuery query(connection);
    for (const QueryColumn& column : columns) {
        query.addColumnAt(column.table, column.column, static_cast<int>(column.position));
        query.addOrder(column.table, column.column, true);
    }
    query.markDistinct(distinct);
    query.markLatestOnly(latestOnly);
    query.setCondition(condition);
    dbif::QueryResult result = dbif::run_query(query);
    const dbif::TraceStep step(connection.trace(), "write the values as text");
    std::vector<std::vector<std::string>> texts;
    for (dbif::ResultColumn& column : result.columns) {
        texts.push_back(dbif::take_texts(&column));
    }
    return texts;
}
} // namespace

bool dbapi_get_values_for_keywords(
    bool distinct,
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& givenQuery,
    std::string* errors)
{
    values->clear();
    dbif::clear_error(errors);
    const dbapi::PublicCall call(connectionName, givenQuery, errors);
    if (!call.hasBegun()) {
        return false;
    }
    DBIF_Connection* handle = nullptr;
    std::string reason;
    if (!dbapi_get_connection_object_by_name(connectionName, &handle, &reason)) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    const dbapi::CallConnection connection(handle);
    if (keywords.empty()) {
        dbif::deliver_error(errors, "Error: No keywords provided to return database values for.\n");
        return false;
    }
    // The cache holds the condition under the text as the caller gave it.
    const bool isCached = dbapi_cache_is_valid() && dbapi_get_cached_query_str() == givenQuery;
    const std::string query = isCached ? givenQuery : dbif::trimmed(givenQuery);
    std::vector<QueryColumn> columns;
    DBIF_QueryCondition* built = nullptr;
    bool latestOnly = true;
    if (!find_query_columns(*connection, keywords, query, &columns, &built, &latestOnly, &reason)) {
        dbif::deliver_error(
            errors, "Error: Failed to resolve keywords to valid database unique key names. \n"
                    "Error(s) reported: \n" +
                        reason);
        return false;
    }
    const dbapi::CallCondition condition(built);
    *values = read_rows(*connection, columns, condition.get(), latestOnly, distinct);
    return true;
}

namespace dbapi {
bool db_get_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_for_keyword(false, connectionName, keyword, values, query, errors);
}

bool db_get_distinct_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_for_keyword(true, connectionName, keyword, values, query, errors);
}

bool db_get_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_values_for_keywords(false, connectionName, keywords, values, query, errors);
}

bool db_get_distinct_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_values_for_keywords(true, connectionName, keywords, values, query, errors);
}
} // namespace dbapi
