#pragma once

#include <string>
#include <vector>

namespace dbapi {
// One setup record, by its id. `errors` receives the text on failure, or the standard error stream
// does when it is null; outputs are emptied first and filled on success only. Nothing is thrown.

/// The setup's keys, each as "Key(VG,setup,DOUBLE,INPUT)", and their values: `(*values)[k][point]`
/// is the value of key k at a point, an empty text where there is none. A setup without points has
/// its keys, each with no value.
bool db_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors);

/// The data header stored for the setup's column of that name; empty when there is none.
bool db_get_column_dataheader_from_setup_id(
    const std::string& connectionName,
    int setupId,
    const std::string& columnName,
    std::string* header,
    std::string* errors);
} // namespace dbapi

bool dbapi_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors);
