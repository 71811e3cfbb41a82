#include "dbapi/db_listing.h"

#include "dbapi/call/public_call.h"
#include "dbapi/key/key_catalogue.h"
#include "dbif/host/error_text.h"
#include "dbif/schema/schema_names.h"

namespace {
void check_table(const std::string& tablename)
{
    if (dbif::find_table(tablename) == nullptr) {
        throw dbapi::FaultError(dbapi::argument_fault(
            "Error: Unexpected, Invalid Database table name encountered: \"" + tablename +
            "\". \n"));
    }
}

void check_key_format(const std::string& keyFormat)
{
    if (keyFormat != "SHORT" && keyFormat != "FULL") {
        throw dbapi::FaultError(dbapi::argument_fault(
            "Error: Invalid key format type specified \"" + keyFormat +
            "\".\nThe valid key format types are: \"SHORT\" or \"FULL\" .\n"));
    }
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
    return dbapi::run_call_without_exceptions(connectionName, query, errors, [&] {
        const dbapi::Selection selection = dbapi::select_records_of_call(connectionName, query);
        check_key_format(keyFormat);
        check_table(tablename);
        *keynames = dbapi::held_key_names(
            selection.connection, tablename, selection.condition.get(), selection.latestOnly,
            keyFormat == "SHORT");
    });
}

namespace dbapi {
void db_get_tablenames(std::set<std::string>* tablenames)
{
    tablenames->clear();
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        tablenames->emplace(dbif::table_info(table).name);
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
    return run_call_without_exceptions(connectionName, query, errors, [&] {
        Selection selection = select_records_of_call(connectionName, query);
        check_table(tablename);
        *keys = read_key_statistics(
            selection.connection, tablename, selection.condition.get(), selection.latestOnly);
    });
}
} // namespace dbapi
