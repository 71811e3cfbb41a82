#include "dbapi/wall/value_retrieval.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/call/connection_access.h"
#include "dbapi/table_dispatch.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/wall/condition_builder.h"
#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/keyword_split.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"
#include "dbif/retrieval/vanto_query.h"

#include <functional>
#include <optional>
#include <type_traits>

namespace {
/// The query for a column's values, and the data type of its objects.
struct ValuesQuery
{
    DBIF_VantoQuery query;
    QString datatype;
};

/// How the values of a column are wanted.
struct Wanted
{
    bool distinct = false;
    SortOrder order = ASCENDING;
    const DBIF_QueryCondition* condition = nullptr;
    bool latestOnly = true;
};

/// Nothing when the table has no such column.
template <typename Record>
std::optional<ValuesQuery> values_query(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    const Wanted& wanted)
{
    constexpr auto kFixedColumns = std::is_same_v<Record, DBIF_CatalogEntry>
                                       ? dbapi::FixedColumns::First
                                       : dbapi::FixedColumns::ByCategory;
    std::optional<ValuesQuery> query;
    dbapi::use_column<Record>(
        connection, keyname, category, datatype, kFixedColumns, [&](const auto& column) {
            if constexpr (std::is_same_v<decltype(column), const DBIF_FixedColumn<Record>&>) {
                query = ValuesQuery{
                    Record::valuesQuery(
                        connection, column, wanted.order, wanted.condition, wanted.latestOnly,
                        wanted.distinct),
                    TEXT_DATATYPE};
            } else {
                query = ValuesQuery{
                    Record::valuesQuery(
                        *column, wanted.order, wanted.condition, wanted.latestOnly,
                        wanted.distinct),
                    column->getDataType()};
            }
        });
    return query;
}

template <typename Record>
bool get_values( // NOLINT(readability-function-size): the published form of a retrieval
    bool distinct,
    DBIF_Connection& connection,
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
    auto query = values_query<Record>(
        connection, keyname, category, datatype, {distinct, order, condition, latestOnly});
    if (!query.has_value()) {
        return false;
    }
    *values = queryValues(connection, &query->query, query->datatype);
    return true;
}

/// Resolves the keyword, through the cache where the answer does not depend on the condition.
bool resolve(
    DBIF_Connection& connection,
    const std::string& keyword,
    dbapi::ResolvedKey* key,
    const Wanted& wanted,
    std::string* errors)
{
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    const bool isCached = dbapi_cache_is_valid() && *dbapi_get_cached_connection() == connection;
    if (isCached) {
        const auto known = dbapi::cache()->resolvedKeywords.find(keyword);
        if (known != dbapi::cache()->resolvedKeywords.end()) {
            *key = known->second;
            return true;
        }
    }
    bool isByDefinition = false;
    if (!dbapi::resolve_keyword_by_definition(
            connection, keyword, key, wanted.condition, wanted.latestOnly, &isByDefinition,
            errors)) {
        return false;
    }
    if (isCached && isByDefinition) {
        dbapi::cache()->resolvedKeywords.emplace(keyword, *key);
    }
    return true;
}

/// The road that both forms of values share: connection, condition, key, column; `use` gets the
/// query.
bool with_values_query(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    const std::string& queryString,
    SortOrder order,
    std::string* errors,
    const std::function<void(DBIF_Connection&, ValuesQuery&)>& use)
{
    DBIF_Connection* handle = nullptr;
    if (!dbapi_get_connection_object_by_name(connectionName, &handle, errors)) {
        return false;
    }
    const dbapi::CallConnection connection(handle);
    Wanted wanted{distinct, order, nullptr, true};
    DBIF_QueryCondition* built = nullptr;
    if (!dbapi_get_query_str_dbif_query_condition_ptr(
            *connection, queryString, &built, &wanted.latestOnly, errors)) {
        return false;
    }
    const dbapi::CallCondition condition(built);
    wanted.condition = condition.get();
    dbapi::ResolvedKey key;
    if (!resolve(*connection, keyword, &key, wanted, errors)) {
        return false;
    }
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(key.attributes, &category, &datatype);
    const auto found = dbapi::visit_table(key.tablename, [&](auto record) {
        using Record = typename decltype(record)::type;
        auto query = values_query<Record>(*connection, key.keyname, category, datatype, wanted);
        if (query.has_value()) {
            use(*connection, *query);
        }
        return query.has_value();
    });
    if (!found.has_value()) {
        dbif::deliver_error(
            errors, "Error: Unexpected, Invalid Database table name encountered: \"" +
                        key.tablename + "\".\n");
    }
    return found.value_or(false);
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
    return with_values_query(
        distinct, connectionName, keyword, query, ASCENDING, errors,
        [values](DBIF_Connection& /*connection*/, ValuesQuery& found) {
            *values = dbif::query_texts(found.query);
        });
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
    return with_values_query(
        distinct, connectionName, keyword, query, order, errors,
        [values](DBIF_Connection& connection, ValuesQuery& found) {
            *values = queryValues(connection, &found.query, found.datatype);
        });
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
    return get_values<DBIF_CatalogEntry>(
        distinct, connection, keyname, category, datatype, condition, values, order, latestOnly,
        errors);
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
    return get_values<DBIF_Device>(
        distinct, connection, keyname, category, datatype, condition, values, order, latestOnly,
        errors);
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
    return get_values<DBIF_Die>(
        distinct, connection, keyname, category, "", condition, values, order, latestOnly, errors);
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
    return get_values<DBIF_Measurement>(
        distinct, connection, keyname, category, datatype, condition, values, order, latestOnly,
        errors);
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
    return get_values<DBIF_MeasurementCondition>(
        distinct, connection, keyname, category, datatype, condition, values, order, latestOnly,
        errors);
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
    return get_values<DBIF_Routine>(
        distinct, connection, keyname, category, "", condition, values, order, latestOnly, errors);
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
    return get_values<DBIF_Setup>(
        distinct, connection, keyname, category, datatype, condition, values, order, latestOnly,
        errors);
}
