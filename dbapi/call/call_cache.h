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

/// The state that the last public call leaves to the next one: the open connection with the record
/// that it was made from, the query string with its condition, and how new the data was. It owns
/// all of that: pointers that it hands out are not to be deleted, and hold until the next public
/// call.
///
/// There is one for the process, used by one thread at a time. Programs look at it through the
/// functions below.
class DbapiCache
{
    Q_DISABLE_COPY_MOVE(DbapiCache)

public:
    DbapiCache() = default;
    ~DbapiCache() = default;

    /// Both are null unless connection, record and condition are all there.
    [[nodiscard]] DBIF_Connection* get_connectionObj() const;
    [[nodiscard]] DBIF_QueryCondition* get_queryCondP() const;
    /// The name of the connection's record; empty when there is no record.
    [[nodiscard]] std::string get_connection_name() const;

    /// The query string that the condition was built from; empty when there is no condition.
    [[nodiscard]] const std::string& get_querystr() const { return query; }

    /// Why the cache could not be brought up to date; empty when it could.
    [[nodiscard]] const std::string& last_errors() const { return lastErrors; }

    /// Tells whether it is being brought up to date right now.
    [[nodiscard]] bool in_update() const { return inUpdate; }

    /// Tells whether superseded records do not count under the query string; true without one.
    [[nodiscard]] bool is_doLatestOnly() const { return latestOnly; }

    /// Tells whether connection, record and condition are all there.
    [[nodiscard]] bool is_validCache() const;

    /// Closes the connection, and forgets its record and the keywords that were resolved on it.
    void clearDataConnection();
    /// Forgets the query string with its condition, or with the reason why it has none.
    void clearQueryData();
    /// Forgets how new the data was, so that the next call takes it for changed.
    void clear_database_modified_time();
    void clear_last_errors();
    /// Notes, until the public call in progress ends, that a connection does not open and why.
    void rememberFailedOpening(const std::string& connectionName, const std::string& reason);

    // The state itself. Only the functions of dbapi/call touch it: cache_refresh brings it up to
    // date, connection_access keeps the stored record and failed openings in it, and public_call
    // the last fault.

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
    /// The fault that the last public call failed with; nothing when it succeeded.
    std::optional<dbapi::Fault> lastFault;
};

/// Marks, while it lives, that a public call is in progress. Calls nest, as the library makes some
/// within others; only the outermost one brings the cache up to date.
class DbapiCacheHelper
{
    Q_DISABLE_COPY_MOVE(DbapiCacheHelper)

public:
    DbapiCacheHelper();
    ~DbapiCacheHelper();

    /// Tells whether this is the outermost one.
    [[nodiscard]] bool is_at_toplevel() const { return isTopLevel_; }

private:
    bool isTopLevel_;
};

/// Tells whether the cache holds a connection, its record and a condition.
bool dbapi_cache_is_valid();
/// Tells whether the cache is being brought up to date right now.
bool dbapi_cache_updating_self();

// The cache's own objects. Callers must not delete them; they hold until the next public call.

/// The open connection; null unless connection, record and condition are all there.
DBIF_Connection* dbapi_get_cached_connection();
/// The name under which it is stored; empty when there is none.
std::string dbapi_get_cached_connection_name();
/// The condition; null when the cache has no connection, record or condition. Sets `latestOnly`,
/// which must not be null, in any case: to true unless the query begins with "ALLDATA:".
DBIF_QueryCondition* dbapi_get_cached_query_condition(bool* latestOnly);
/// The query string that it was built from; empty when there is none.
std::string dbapi_get_cached_query_str();
/// Tells whether an object is the cache's own, so that it must not be deleted. False for null.
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
