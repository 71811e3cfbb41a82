#pragma once

#include "tools/dbapi/output/data_table.h"

#include <string>

namespace dbapi::tool {
/// The data as a table for people, or nothing when it has no rows. Columns of numbers stand right.
/// When `isShortened`, the table fits the height of the terminal, long values are cut, and a last
/// line says how many rows are missing.
std::string table_text(const DataTable& table, bool isShortened);
} // namespace dbapi::tool
