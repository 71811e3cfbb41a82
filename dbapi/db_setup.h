#pragma once

#include <string>
#include <vector>

namespace dbapi {
// One setup record by its id (see db_records.h), be it superseded or not; an id below 1 is a
// failure. `errors` receives the text on failure, or the standard error stream does when it is
// null; outputs are emptied first and filled on success only. Nothing is thrown.

/// The setup's keys, each as "Key(VG,setup,DOUBLE,INPUT)", and their values: `(*values)[k][point]`
/// is the value of key k at a point, an empty text where there is none. A setup without points has
/// its keys, each with no value. An id that no setup has is a failure.
bool db_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors);

/// The data header stored for the setup's column of that name; empty when the setup has no such
/// column or the column no header, and for an id that no setup has. An empty name is a failure.
bool db_get_column_dataheader_from_setup_id(
    const std::string& connectionName,
    int setupId,
    const std::string& columnName,
    std::string* header,
    std::string* errors);
} // namespace dbapi

/// The same as `dbapi::db_get_setup_keys_values_for_setup_id_as_text`, under an older name.
bool dbapi_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors);
