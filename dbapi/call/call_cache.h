#pragma once

#include "dbapi/key/key_resolution.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/engine/sql_dialect.h"
#include "dbui/connection_record.h"

#include <QDateTime>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

/// What the last public call leaves to the next one: the open connection with the record that it
/// was made from, the query string with its condition, and how new the data was. Owns all of it.
class DbapiCache
{
    Q_DISABLE_COPY_MOVE(DbapiCache)

public:
    DbapiCache() = default;
    ~DbapiCache() = default;

    /// Null unless connection, record and condition are all there.
    [[nodiscard]] DBIF_Connection* get_connectionObj() const;
    [[nodiscard]] DBIF_QueryCondition* get_queryCondP() const;
    /// Empty when there is no record.
    [[nodiscard]] std::string get_connection_name() const;

    [[nodiscard]] const std::string& get_querystr() const { return query; }

    [[nodiscard]] const std::string& last_errors() const { return lastErrors; }

    [[nodiscard]] bool in_update() const { return inUpdate; }

    [[nodiscard]] bool is_doLatestOnly() const { return latestOnly; }

    [[nodiscard]] bool is_validCache() const;

    void clearDataConnection();
    void clearQueryData();
    void clear_database_modified_time();
    void clear_last_errors();
    /// Notes, until the public call in progress ends, that a connection does not open and why.
    void rememberFailedOpening(const std::string& connectionName, const std::string& reason);

    // What cache_refresh.h works on; everybody else reads through the members above.

    std::unique_ptr<DBIF_Connection> connection;
    std::unique_ptr<DbuiConnection> record;
    /// Shared with the call that works with it.
    std::shared_ptr<DBIF_QueryCondition> condition;
    QDateTime modifiedTime;
    std::string query;
    std::string lastErrors;
    bool latestOnly = true;
    bool inUpdate = false;
    /// The connection that did not open in this call, and the text that told why.
    std::optional<std::pair<std::string, std::string>> failedOpening;
    /// Proves that the database has not changed since `modifiedTime` was read.
    dbif::ChangeToken changeToken;
    /// The record that was last read from the connections file, and the state of the file then.
    DbuiConnection storedRecord;
    std::string fileStamp;
    /// Keywords that were resolved without regard to a condition; they hold while the data does.
    std::map<std::string, dbapi::Resolution> resolvedKeywords;
    /// Why the query string of the call in progress gives no condition, so that it is read once.
    std::string failedQuery;
    std::optional<dbapi::Fault> queryFault;
    /// What the last public call failed with; nothing when it succeeded.
    std::optional<dbapi::Fault> lastFault;
};

/// Marks the outermost of nested public calls while it lives.
class DbapiCacheHelper
{
    Q_DISABLE_COPY_MOVE(DbapiCacheHelper)

public:
    DbapiCacheHelper();
    ~DbapiCacheHelper();

    [[nodiscard]] bool is_at_toplevel() const { return isTopLevel_; }

private:
    bool isTopLevel_;
};

/// Whether the cache holds a record, a connection and a condition.
bool dbapi_cache_is_valid();
/// Whether the cache is being brought up to date right now.
bool dbapi_cache_updating_self();

// The cache's own objects, which callers must not delete.

DBIF_Connection* dbapi_get_cached_connection();
std::string dbapi_get_cached_connection_name();
/// Sets `latestOnly` in any case; null when the cache has no connection or record.
DBIF_QueryCondition* dbapi_get_cached_query_condition(bool* latestOnly);
std::string dbapi_get_cached_query_str();
bool dbapi_is_using_cached_connection_object(const DBIF_Connection* handle);
bool dbapi_is_using_cached_query_condition_object(const DBIF_QueryCondition* condition);

namespace dbapi {
/// The one cache of the process; null until it is first initialised.
DbapiCache* cache();
/// Makes it when there is none.
DbapiCache& make_cache();

/// Deletes a connection or condition that a call works with, unless it is the cache's own.
struct DeleteUnlessCached
{
    void operator()(DBIF_Connection* handle) const;
    void operator()(DBIF_QueryCondition* condition) const;
};

using CallConnection = std::unique_ptr<DBIF_Connection, DeleteUnlessCached>;
using CallCondition = std::unique_ptr<DBIF_QueryCondition, DeleteUnlessCached>;
} // namespace dbapi
