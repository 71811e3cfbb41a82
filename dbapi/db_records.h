#pragma once

#include <set>
#include <string>
#include <vector>

// Records by id. `errors` receives the text on failure, or the standard error stream does when it
// is null; the output is emptied first.

/// The ids of the records of a table that a query string selects.
bool dbapi_get_table_ids_from_query_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);

/// The values of a keyword for one record: those under the query string that selects the record
/// and, with it, whatever `query` selects.
bool dbapi_get_text_key_values_for_table_id_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);

/// That query string: "{$MEASDBID=42} AND temp=[20,30]", with "ALLDATA: " before it when the query
/// has the command. False when the command is misplaced.
bool dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
    const std::string& tablename,
    int id,
    std::string* queryOut,
    const std::string& query,
    std::string* errors);

namespace dbapi {
// The ids of the records that a query string selects, table by table. None when it selects nothing.

bool db_get_catalog_entry_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_device_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_die_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_measurement_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_measurement_condition_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_routine_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
bool db_get_setup_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);

// The values of a keyword for the record of a table with that id, sorted ascending; `query` narrows
// them further. None when there is no such record.

bool db_get_key_values_for_catalog_entry_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_device_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_die_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_measurement_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_measurement_condition_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_routine_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
bool db_get_key_values_for_setup_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
} // namespace dbapi
