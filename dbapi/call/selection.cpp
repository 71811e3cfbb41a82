#include "dbapi/call/selection.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/call/connection_access.h"
#include "dbapi/query/query_condition.h"

#include <utility>

namespace dbapi {
DBIF_Connection connection_for_call(const std::string& name)
{
    DBIF_Connection* handle = nullptr;
    std::string reason;
    if (!dbapi_get_connection_object_by_name(name, &handle, &reason)) {
        throw FaultError(connection_fault(reason));
    }
    const CallConnection connection(handle);
    return *connection;
}

Selection select_on(DBIF_Connection connection, const std::string& query)
{
    const DbapiCache* cached = cache();
    const bool isCached = cached != nullptr && !cached->inUpdate && cached->connection != nullptr &&
                          *cached->connection == connection;
    if (isCached && cached->condition != nullptr && cached->query == query) {
        return {std::move(connection), cached->condition, cached->latestOnly};
    }
    if (isCached && cached->queryFault.has_value() && cached->failedQuery == query) {
        throw FaultError(*cached->queryFault);
    }
    QueryCondition built = build_condition(connection, query);
    return {std::move(connection), std::move(built.condition), built.latestOnly};
}

Selection select_records_of_call(const std::string& connectionName, const std::string& query)
{
    return select_on(connection_for_call(connectionName), query);
}
} // namespace dbapi
