#include "dbapi/db_listing.h"

#include "dbapi/catalogue_reader.h"
#include "dbapi/condition_builder.h"
#include "dbapi/connection_access.h"
#include "dbapi/public_call.h"
#include "dbif/error_text.h"
#include "dbif/schema_names.h"

namespace {
/// What is wrong with the arguments; empty when nothing is.
std::string argument_error(const std::string& keyFormat, const std::string& tablename)
{
    if (keyFormat != "SHORT" && keyFormat != "FULL") {
        return "Error: Invalid key format type specified \"" + keyFormat +
               "\".\nThe valid key format types are: \"SHORT\" or \"FULL\" .\n";
    }
    if (dbif::find_table(tablename) == nullptr) {
        return "Error: Unexpected, Invalid Database table name encountered: \"" + tablename +
               "\". \n";
    }
    return {};
}

bool list_keynames(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<std::string>* keynames,
    const std::string& query,
    const std::string& keyFormat,
    std::string* reason)
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
    *reason = argument_error(keyFormat, tablename);
    if (!reason->empty()) {
        return false;
    }
    return dbapi_get_keynames_for_table_as_set(
        *connection, keynames, condition.get(), tablename, keyFormat, latestOnly, reason);
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
    const dbapi::PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    std::set<std::string> found;
    std::string reason;
    bool isListed = false;
    try {
        isListed = list_keynames(connectionName, tablename, &found, query, keyFormat, &reason);
    } catch (const DBIF_Exception& exception) {
        dbapi_build_error_string_from_dbif_exception(exception, &reason);
    }
    if (!isListed) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    *keynames = std::move(found);
    return true;
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
} // namespace dbapi
