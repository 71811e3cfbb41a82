#include "dbapi/call/cache_refresh.h"

#include "dbapi/call/connection_access.h"
#include "dbapi/query/query_condition.h"
#include "dbapi/words/database_fault.h"
#include "dbif/connection/column_store.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/connection/newest_time.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"

#include <QtGlobal>

namespace {
/// The state of the file behind the cache's connection; one that does not answer has to be opened
/// anew like one whose file was replaced.
dbif::FileState file_state(const DbapiCache& cache)
{
    return cache.connection != nullptr && cache.connection->isValid()
               ? cache.connection->inner().fileState()
               : dbif::FileState::Replaced;
}

/// The call in progress gets this instead of the connection.
void fail_to_open(DbapiCache& cache, const std::string& detail)
{
    const std::string name = cache.get_connection_name();
    cache.clearQueryData();
    cache.lastErrors = dbapi::not_opened(name, detail);
    cache.rememberFailedOpening(name, cache.lastErrors);
}

/// Nothing is read through a log that belongs to another database. The connection stays, because
/// only it knows.
void refuse_overwritten_file(DbapiCache& cache)
{
    const std::string file = cache.record->get_databaseName();
    fail_to_open(
        cache,
        "The SQLite file \"" + file + "\" was overwritten while it was open, and \"" + file +
            "-wal\" still holds changes of the old one. End the programs that have it open, remove "
            "\"" +
            file + "-wal\", and put the file in place again.");
}

/// A server that went away was called once already, when the connection noticed.
void give_up_lost_server(DbapiCache& cache)
{
    std::string reason;
    dbapi_build_error_string_from_qsqlerror(cache.connection->lastError(), &reason);
    fail_to_open(cache, reason);
    cache.clearDataConnection();
}

class UpdateMark
{
    Q_DISABLE_COPY_MOVE(UpdateMark)

public:
    explicit UpdateMark(DbapiCache& cache) : cache_(cache) { cache_.inUpdate = true; }

    ~UpdateMark() { cache_.inUpdate = false; }

private:
    DbapiCache& cache_;
};

enum class Freshness { Same, Changed, Unknown };

Freshness compare_with_database(DbapiCache& cache)
{
    const dbif::TraceStep step(cache.connection->inner().trace(), dbif::kFreshnessStep);
    try {
        const dbif::ChangeToken token = cache.connection->inner().changeToken();
        if (token == cache.changeToken) {
            return Freshness::Same;
        }
        // An older time is a change as well: a backup was put back.
        if (dbif::newest_time(*cache.connection) != cache.modifiedTime) {
            return Freshness::Changed;
        }
        cache.changeToken = token;
        return Freshness::Same;
    } catch (const DBIF_Exception&) {
        return Freshness::Unknown;
    }
}

/// `Impossible`: the call fails, with the text that is noted.
enum class Reuse { Everything, Connection, Nothing, Impossible };

/// The part of the cache that serves a query string on the connection that it holds.
Reuse reusable_part(DbapiCache& cache, const std::string& query)
{
    const dbif::FileState file = file_state(cache);
    if (file == dbif::FileState::Overwritten) {
        refuse_overwritten_file(cache);
        return Reuse::Impossible;
    }
    if (file == dbif::FileState::Replaced) {
        return Reuse::Nothing;
    }
    switch (compare_with_database(cache)) {
    case Freshness::Same:
        return cache.condition != nullptr && cache.query == query ? Reuse::Everything
                                                                  : Reuse::Connection;
    case Freshness::Changed:
        cache.resolvedKeywords.clear();
        dbif::ColumnStore::of(*cache.connection).refresh();
        return Reuse::Connection;
    case Freshness::Unknown:
        break;
    }
    if (cache.connection->isValid()) {
        return Reuse::Nothing;
    }
    give_up_lost_server(cache);
    return Reuse::Impossible;
}
} // namespace

bool dbapi_get_latest_modified_time(
    DBIF_Connection& connection,
    QDateTime* time,
    std::string* error)
{
    dbif::clear_error(error);
    try {
        *time = dbif::newest_time(connection);
        return true;
    } catch (const DBIF_Exception& exception) {
        dbif::deliver_error(error, dbapi::database_fault(exception).text);
        return false;
    }
}

bool is_database_modified_time_newer(DbapiCache& cache)
{
    return compare_with_database(cache) == Freshness::Changed;
}

void update_database_modified_time(DbapiCache& cache)
{
    cache.clear_database_modified_time();
    const dbif::TraceStep step(cache.connection->inner().trace(), dbif::kFreshnessStep);
    try {
        // The token first: a change in between then makes the next check look again.
        const dbif::ChangeToken token = cache.connection->inner().changeToken();
        cache.modifiedTime = dbif::newest_time(*cache.connection);
        cache.changeToken = token;
    } catch (const DBIF_Exception&) {
        cache.clear_database_modified_time();
    }
}

bool updateQueryData(DbapiCache& cache, const std::string& query)
{
    cache.clearQueryData();
    cache.query = query;
    try {
        dbapi::QueryCondition built = dbapi::build_condition(*cache.connection, query);
        cache.condition = std::move(built.condition);
        cache.latestOnly = built.latestOnly;
        return true;
    } catch (const dbapi::FaultError& error) {
        cache.clearQueryData();
        cache.lastErrors = error.fault().text;
        cache.failedQuery = query;
        cache.queryFault = error.fault();
        return false;
    }
}

bool updateDataConnection(DbapiCache& cache, const DbuiConnection& record)
{
    cache.clearQueryData();
    cache.clearDataConnection();
    DBIF_Connection* connection = nullptr;
    if (!dbapi::open_connection_of(record, &connection, &cache.lastErrors)) {
        cache.rememberFailedOpening(record.get_connectionName(), cache.lastErrors);
        return false;
    }
    cache.connection.reset(connection);
    cache.record = std::make_unique<DbuiConnection>(record);
    return true;
}

bool check_and_do_update_to_cache(
    DbapiCache& cache,
    const std::string& name,
    const std::string& query)
{
    const UpdateMark mark(cache);
    cache.clear_last_errors();
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        cache.clearQueryData();
        cache.clearDataConnection();
        cache.clear_database_modified_time();
        cache.lastErrors = "Error: Database connection name \"" + name +
                           "\" was not found.\n"
                           "Failed to create a valid open database connection.\n";
        return false;
    }
    const Reuse reuse = cache.record != nullptr && *cache.record == record
                            ? reusable_part(cache, query)
                            : Reuse::Nothing;
    if (reuse == Reuse::Everything || reuse == Reuse::Impossible) {
        return true;
    }
    if (reuse == Reuse::Nothing && !updateDataConnection(cache, record)) {
        return true;
    }
    // Before the condition is built: what changes meanwhile then counts as newer.
    update_database_modified_time(cache);
    updateQueryData(cache, query);
    return true;
}

bool dbapi_initialize_global_cache(
    const std::string& name,
    const std::string& query,
    std::string* error)
{
    dbif::clear_error(error);
    DbapiCache& cache = dbapi::make_cache();
    if (check_and_do_update_to_cache(cache, name, query)) {
        return true;
    }
    dbif::deliver_error(error, cache.last_errors());
    return false;
}
