#include "dbapi/db_listing.h"

#include "dbapi/call/connection_access.h"
#include "dbapi/call/public_call.h"
#include "dbapi/wall/catalogue_reader.h"
#include "dbapi/wall/condition_builder.h"
#include "dbif/host/error_text.h"
#include "dbif/schema/schema_names.h"

namespace {
/// What is wrong with a table name; empty when nothing is.
std::string table_error(const std::string& tablename)
{
    if (dbif::find_table(tablename) == nullptr) {
        return "Error: Unexpected, Invalid Database table name encountered: \"" + tablename +
               "\". \n";
    }
    return {};
}

/// What is wrong with the arguments; empty when nothing is.
std::string argument_error(const std::string& keyFormat, const std::string& tablename)
{
    if (keyFormat != "SHORT" && keyFormat != "FULL") {
        return "Error: Invalid key format type specified \"" + keyFormat +
               "\".\nThe valid key format types are: \"SHORT\" or \"FULL\" .\n";
    }
    return table_error(tablename);
}

/// The road that the listings share: connection and condition; `list` gets both, with the
/// latest-only flag, and says whether it succeeded.
template <typename List>
bool with_selected_records(
    const std::string& connectionName,
    const std::string& query,
    std::string* reason,
    const List& list)
{
    DBIF_Connection* handle = nullptr;
    if (!dbapi_get_connection_object_by_name(connectionName, &handle, reason)) {
        return false;
    }
    const dbapi::CallConnection connection(handle);
    DBIF_QueryCondition* built = nullptr;
    bool latestOnly = true;
    if (!dbapi_get_query_str_dbif_query_condition_ptr(
            *connection, query, &built, &latestOnly, reason)) {
        return false;
    }
    const dbapi::CallCondition condition(built);
    return list(*connection, condition.get(), latestOnly);
}

/// A public listing: the call's begin, and the failures of `list`, which puts their text into
/// `reason`.
template <typename List>
bool run_listing(
    const std::string& connectionName,
    const std::string& query,
    std::string* errors,
    std::string* reason,
    const List& list)
{
    const dbapi::PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    bool isListed = false;
    try {
        isListed = with_selected_records(connectionName, query, reason, list);
    } catch (const DBIF_Exception& exception) {
        dbapi_build_error_string_from_dbif_exception(exception, reason);
    }
    if (!isListed) {
        dbif::deliver_error(errors, *reason);
    }
    return isListed;
}
} // namespace

bool dbapi_get_keynames_for_resolved_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* errors)
{
    keynames->clear();
    std::set<std::string> found;
    std::string reason;
    const auto list = [&](DBIF_Connection& connection, const DBIF_QueryCondition* condition,
                          bool latestOnly) {
        reason = argument_error(keyFormat, tablename);
        return reason.empty() &&
               dbapi_get_keynames_for_table_as_set(
                   connection, &found, condition, tablename, keyFormat, latestOnly, &reason);
    };
    const bool isListed = run_listing(connectionName, query, errors, &reason, list);
    if (isListed) {
        *keynames = std::move(found);
    }
    return isListed;
}

namespace dbapi {
void db_get_tablenames(std::set<std::string>* tablenames)
{
    tablenames->clear();
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        tablenames->emplace(dbif::facts(table).name);
    }
}

bool db_get_keynames_in_table(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* errors)
{
    return dbapi_get_keynames_for_resolved_tablename(
        connectionName, tablename, keynames, query, keyFormat, errors);
}

bool db_get_key_statistics(
    const std::string& connectionName,
    const std::string& tablename,
    std::vector<KeyStatistics>* keys,
    const std::string& query,
    std::string* errors)
{
    keys->clear();
    std::vector<KeyStatistics> found;
    std::string reason;
    const auto list = [&](DBIF_Connection& connection, const DBIF_QueryCondition* condition,
                          bool latestOnly) {
        reason = table_error(tablename);
        if (reason.empty()) {
            found = read_key_statistics(connection, tablename, condition, latestOnly);
        }
        return reason.empty();
    };
    const bool isListed = run_listing(connectionName, query, errors, &reason, list);
    if (isListed) {
        *keys = std::move(found);
    }
    return isListed;
}
} // namespace dbapi
