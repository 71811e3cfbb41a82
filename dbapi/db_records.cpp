#include "dbapi/db_records.h"

#include "dbapi/call/public_call.h"
#include "dbapi/db_values.h"
#include "dbapi/read/keyword_read.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/query_command.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"

#include <algorithm>

namespace {
/// The keyword of a table's id: "$DEVDBID" and its like.
std::string id_keyword(const std::string& tablename)
{
    std::string builtin;
    const bool isRecordTable = dbif::find_table(tablename) != nullptr;
    if (isRecordTable && dbapi_convert_keyword_to_builtin_keyname(tablename + ".id", &builtin)) {
        return builtin;
    }
    return "Key(id," + tablename + ")";
}

/// False at the first value that is no whole number; those before it are in the set.
bool add_ids(const std::vector<std::string>& values, std::set<int>* ids)
{
    for (const std::string& value : values) {
        std::string text = dbif::trimmed(value);
        text.erase(std::remove(text.begin(), text.end(), '\''), text.end());
        if (!is_string_integer(text)) {
            return false;
        }
        ids->insert(KTString_to_int(text));
    }
    return true;
}

/// The ids of the records that the query selects, as texts.
std::vector<std::string>
read_ids(const std::string& connectionName, const std::string& tablename, const std::string& query)
{
    try {
        const dbapi::Selection selection = dbapi::select_records_of_call(connectionName, query);
        dbif::QueryResult result =
            dbif::read_columns(dbapi::read_of_keyword(selection, id_keyword(tablename), true));
        return dbif::take_texts(&result.columns.front());
    } catch (const DBIF_Exception& exception) {
        throw dbapi::FaultError(dbapi::database_fault(exception));
    }
}
} // namespace

bool dbapi_get_table_ids_from_query_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    ids->clear();
    dbif::clear_error(errors);
    return dbapi::run_call(connectionName, query, errors, [&] {
        std::vector<std::string> values;
        try {
            values = read_ids(connectionName, tablename, query);
        } catch (const dbapi::FaultError& error) {
            throw dbapi::FaultError(error.fault().under(
                "Error: Couldn't retrieve table ids for table name: \"" + tablename + "\". \n"));
        }
        if (!add_ids(values, ids)) {
            dbapi::Fault fault;
            fault.text = "Error retrieving integer table ids for table name: \"" + tablename +
                         "\". \nTable ids were stored as non-integer values in database.\n";
            throw dbapi::FaultError(std::move(fault));
        }
    });
}

bool dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
    const std::string& tablename,
    int id,
    std::string* queryOut,
    const std::string& query,
    std::string* errors)
{
    queryOut->clear();
    std::string keyword = tablename + ".id";
    std::string builtin;
    if (dbapi_convert_keyword_to_builtin_keyname(keyword, &builtin)) {
        keyword = builtin;
    }
    try {
        const dbapi::CommandedQuery split = dbapi::split_query_command(query);
        *queryOut = std::string(split.isAllData ? "ALLDATA: " : "") + "{" + keyword + "=" +
                    std::to_string(id) + "}" +
                    (split.rest.empty() ? "" : " AND " + std::string(split.rest));
        return true;
    } catch (const dbapi::FaultError& error) {
        return dbapi::fail_call(error.fault(), errors);
    }
}

bool dbapi_get_text_key_values_for_table_id_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    std::string recordQuery;
    return dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
               tablename, id, &recordQuery, query, errors) &&
           dbapi::db_get_values_for_keyword_as_text(
               connectionName, keyword, values, recordQuery, errors);
}

namespace dbapi {
bool db_get_catalog_entry_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "catalog_entry", ids, query, errors);
}

bool db_get_device_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "device", ids, query, errors);
}

bool db_get_die_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(connectionName, "die", ids, query, errors);
}

bool db_get_measurement_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "measurement", ids, query, errors);
}

bool db_get_measurement_condition_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "measurement_condition", ids, query, errors);
}

bool db_get_routine_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "routine", ids, query, errors);
}

bool db_get_setup_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_table_ids_from_query_for_tablename(
        connectionName, "setup", ids, query, errors);
}

bool db_get_key_values_for_catalog_entry_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "catalog_entry", id, keyword, values, query, errors);
}

bool db_get_key_values_for_device_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "device", id, keyword, values, query, errors);
}

bool db_get_key_values_for_die_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "die", id, keyword, values, query, errors);
}

bool db_get_key_values_for_measurement_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "measurement", id, keyword, values, query, errors);
}

bool db_get_key_values_for_measurement_condition_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "measurement_condition", id, keyword, values, query, errors);
}

bool db_get_key_values_for_routine_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "routine", id, keyword, values, query, errors);
}

bool db_get_key_values_for_setup_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_text_key_values_for_table_id_for_tablename(
        connectionName, "setup", id, keyword, values, query, errors);
}
} // namespace dbapi
