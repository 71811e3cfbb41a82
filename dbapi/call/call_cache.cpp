#include "dbapi/call/call_cache.h"

namespace {
// The cache and its call marker are the process's, by contract.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
DbapiCache* globalCache = nullptr;
bool isCallInProgress = false;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)
} // namespace

DBIF_Connection* DbapiCache::get_connectionObj() const
{
    return is_validCache() ? connection.get() : nullptr;
}

DBIF_QueryCondition* DbapiCache::get_queryCondP() const
{
    return is_validCache() ? condition.get() : nullptr;
}

std::string DbapiCache::get_connection_name() const
{
    return record == nullptr ? std::string() : record->get_connectionName();
}

bool DbapiCache::is_validCache() const
{
    return connection != nullptr && record != nullptr && condition != nullptr;
}

void DbapiCache::clearDataConnection()
{
    connection.reset();
    record.reset();
    resolvedKeywords.clear();
}

void DbapiCache::clearQueryData()
{
    query.clear();
    latestOnly = true;
    condition.reset();
    failedQuery.clear();
    queryFault.reset();
}

void DbapiCache::clear_database_modified_time()
{
    modifiedTime = QDateTime();
    changeToken = dbif::ChangeToken();
}

void DbapiCache::clear_last_errors()
{
    lastErrors.clear();
}

void DbapiCache::rememberFailedOpening(const std::string& connectionName, const std::string& reason)
{
    if (isCallInProgress) {
        failedOpening.emplace(connectionName, reason);
    }
}

DbapiCacheHelper::DbapiCacheHelper() : isTopLevel_(!isCallInProgress)
{
    isCallInProgress = true;
    if (isTopLevel_ && globalCache != nullptr) {
        globalCache->lastFault.reset();
    }
}

DbapiCacheHelper::~DbapiCacheHelper()
{
    if (isTopLevel_) {
        isCallInProgress = false;
        if (globalCache != nullptr) {
            globalCache->failedOpening.reset();
        }
    }
}

namespace dbapi {
DbapiCache* cache()
{
    return globalCache;
}

DbapiCache& make_cache()
{
    if (globalCache == nullptr) {
        // Lives until the process ends: it outlasts whatever destroys objects of the process.
        globalCache = new DbapiCache();
    }
    return *globalCache;
}

void DeleteUnlessCached::operator()(DBIF_Connection* handle) const
{
    if (!dbapi_is_using_cached_connection_object(handle)) {
        delete handle;
    }
}

void DeleteUnlessCached::operator()(DBIF_QueryCondition* condition) const
{
    if (!dbapi_is_using_cached_query_condition_object(condition)) {
        delete condition;
    }
}
} // namespace dbapi

bool dbapi_cache_is_valid()
{
    return globalCache != nullptr && globalCache->is_validCache();
}

bool dbapi_cache_updating_self()
{
    return globalCache != nullptr && globalCache->in_update();
}

DBIF_Connection* dbapi_get_cached_connection()
{
    return globalCache == nullptr ? nullptr : globalCache->get_connectionObj();
}

std::string dbapi_get_cached_connection_name()
{
    return globalCache == nullptr ? std::string() : globalCache->get_connection_name();
}

DBIF_QueryCondition* dbapi_get_cached_query_condition(bool* latestOnly)
{
    *latestOnly = globalCache == nullptr || globalCache->is_doLatestOnly();
    const bool isUsable = globalCache != nullptr && globalCache->connection != nullptr &&
                          globalCache->record != nullptr;
    return isUsable ? globalCache->condition.get() : nullptr;
}

std::string dbapi_get_cached_query_str()
{
    return globalCache == nullptr ? std::string() : globalCache->get_querystr();
}

bool dbapi_is_using_cached_connection_object(const DBIF_Connection* handle)
{
    return handle != nullptr && globalCache != nullptr && globalCache->connection.get() == handle;
}

bool dbapi_is_using_cached_query_condition_object(const DBIF_QueryCondition* condition)
{
    return condition != nullptr && globalCache != nullptr &&
           globalCache->condition.get() == condition;
}
