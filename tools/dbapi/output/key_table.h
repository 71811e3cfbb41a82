#pragma once

#include "dbapi/key/key_statistics.h"
#include "dbsuggest/data_table.h"

#include <string>
#include <vector>

namespace dbapi::tool {
/// The columns of a list of keys, without rows; one of them for points where `hasPoints`.
std::vector<DataColumn> key_columns(bool hasPoints);

/// Appends a row for each key of a table to such columns.
void add_keys(
    const std::string& table,
    const std::vector<KeyStatistics>& keys,
    std::vector<DataColumn>* columns);
} // namespace dbapi::tool
