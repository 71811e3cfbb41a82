#pragma once

#include <set>
#include <string>
#include <vector>

// Records by their ids. Ids are unique within a table and never change; each database has its own.
// Connection, keyword and query string are as in db_values.h.
//
// The output is emptied first and filled on success only. On failure `errors` receives the text, or
// the standard error stream does when it is null. Ids are read without an exception; a
// `DBIF_Exception` that the database throws while values are read passes to the caller.

/// The ids of the records of a table that a query string selects. `tablename` is one of the seven
/// ("device").
bool dbapi_get_table_ids_from_query_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);

/// The values of a keyword for one record: those that are read under the query string which
/// `dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename` builds.
bool dbapi_get_text_key_values_for_table_id_for_tablename(
    const std::string& connectionName,
    const std::string& tablename,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);

/// The query string that selects one record and, of it, whatever `query` selects:
/// "{$MEASDBID=42} AND temp=[20,30]", with "ALLDATA: " before it when the query has the command.
/// False when the command is misplaced. Asks no database.
bool dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
    const std::string& tablename,
    int id,
    std::string* queryOut,
    const std::string& query,
    std::string* errors);

namespace dbapi {
// The ids of the records that a query string selects, table by table: those of records that satisfy
// it themselves, or that belong to or have such records. None when it selects nothing. Superseded
// measurements and setups do not count unless the query string begins with "ALLDATA:".

/// Ids of catalogue entries: imports or runs that brought measurements in.
bool db_get_catalog_entry_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of devices.
bool db_get_device_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of dies.
bool db_get_die_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of measurements.
bool db_get_measurement_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of measurement conditions, under which a measurement was made.
bool db_get_measurement_condition_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of measurement routines.
bool db_get_routine_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);
/// Ids of setups: sweeps with their points.
bool db_get_setup_ids_from_query(
    const std::string& connectionName,
    std::set<int>* ids,
    const std::string& query,
    std::string* errors);

// The values of a keyword for the record of a table with that id, as text and sorted ascending;
// `query` narrows them further. None when there is no such record, when it is superseded and the
// query has no "ALLDATA:", and when it has no value. A keyword of another table gives the values of
// the records that belong to this one, or that it belongs to.

/// Values for a catalogue entry.
bool db_get_key_values_for_catalog_entry_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a device.
bool db_get_key_values_for_device_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a die.
bool db_get_key_values_for_die_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a measurement.
bool db_get_key_values_for_measurement_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a measurement condition.
bool db_get_key_values_for_measurement_condition_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a routine.
bool db_get_key_values_for_routine_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
/// Values for a setup; a key of setups gives a value for each of its points.
bool db_get_key_values_for_setup_id_as_text(
    const std::string& connectionName,
    int id,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors);
} // namespace dbapi
