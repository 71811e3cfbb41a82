#include "dbapi/keyword_query.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/call/connection_access.h"
#include "dbapi/wall/column_lookup.h"
#include "dbif/host/host_string.h"

#include <algorithm>

namespace dbapi {
namespace {
template <typename Record>
void add_columns(
    const PlacedColumns<DBIF_FixedColumn<Record>>& found,
    std::vector<QueryColumn>* columns)
{
    for (const auto& [position, column] : found) {
        columns->push_back({position, Record::MASTER_TABLE_NAME, column->getColumnName()});
    }
}

template <typename Record>
void add_columns(
    const PlacedColumns<typename Record::KeyColumn>& found,
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
    PlacedColumns<DBIF_CatalogEntryColumn> catalogEntry;
    PlacedColumns<DBIF_FixedColumn<DBIF_CatalogEntry>> catalogEntryFixed;
    PlacedColumns<DBIF_DeviceColumn> device;
    PlacedColumns<DBIF_FixedColumn<DBIF_Device>> deviceFixed;
    PlacedColumns<DBIF_MeasurementColumn> measurement;
    PlacedColumns<DBIF_FixedColumn<DBIF_Measurement>> measurementFixed;
    PlacedColumns<DBIF_MeasurementConditionColumn> measurementCondition;
    PlacedColumns<DBIF_FixedColumn<DBIF_MeasurementCondition>> measurementConditionFixed;
    PlacedColumns<DBIF_SetupColumn> setup;
    PlacedColumns<DBIF_FixedColumn<DBIF_Setup>> setupFixed;
    PlacedColumns<DBIF_FixedColumn<DBIF_Die>> dieFixed;
    PlacedColumns<DBIF_FixedColumn<DBIF_Routine>> routineFixed;
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
} // namespace

DBIF_VantoQuery KeywordQuery::query() const
{
    DBIF_VantoQuery query(connection);
    for (const QueryColumn& column : columns) {
        query.addColumnAt(column.table, column.column, static_cast<int>(column.position));
    }
    query.markLatestOnly(latestOnly);
    query.setCondition(condition);
    return query;
}

bool with_keyword_query(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& queryString,
    std::string* reason,
    const std::function<void(const KeywordQuery&)>& use)
{
    DBIF_Connection* handle = nullptr;
    if (!dbapi_get_connection_object_by_name(connectionName, &handle, reason)) {
        return false;
    }
    const CallConnection connection(handle);
    if (keywords.empty()) {
        *reason = "Error: No keywords provided to return database values for.\n";
        return false;
    }
    // The cache holds the condition under the text as the caller gave it.
    const bool isCached = dbapi_cache_is_valid() && dbapi_get_cached_query_str() == queryString;
    KeywordQuery found{*connection, {}, nullptr, true};
    DBIF_QueryCondition* built = nullptr;
    std::string text;
    if (!find_query_columns(
            *connection, keywords, isCached ? queryString : dbif::trimmed(queryString),
            &found.columns, &built, &found.latestOnly, &text)) {
        *reason = "Error: Failed to resolve keywords to valid database unique key names. \n"
                  "Error(s) reported: \n" +
                  text;
        return false;
    }
    const CallCondition condition(built);
    found.condition = condition.get();
    use(found);
    return true;
}
} // namespace dbapi
