#include "dbapi/wall/condition_builder.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/query/query_condition.h"
#include "dbif/host/error_text.h"

bool dbapi_get_query_str_dbif_query_condition_ptr(
    DBIF_Connection& connection,
    const std::string& query,
    DBIF_QueryCondition** condition,
    bool* latestOnly,
    std::string* errors)
{
    if (dbapi_cache_is_valid() && !dbapi_cache_updating_self() &&
        *dbapi_get_cached_connection() == connection && dbapi_get_cached_query_str() == query) {
        *condition = dbapi_get_cached_query_condition(latestOnly);
        return true;
    }
    try {
        dbapi::QueryCondition built = dbapi::build_condition(connection, query);
        *condition = built.condition.release();
        *latestOnly = built.latestOnly;
        return true;
    } catch (const dbapi::FaultError& error) {
        dbif::deliver_error(errors, error.fault().text);
        return false;
    }
}
