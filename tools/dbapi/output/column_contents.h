#pragma once

#include <string>

namespace dbapi {
struct DataTable;
}

namespace dbapi::tool {
struct OutputOptions;

/// Tells of each column, whose heading is its keyword, whether the database holds numbers or texts
/// there, if that makes a difference to the output. A keyword that fits several keys stays as it
/// is.
void set_contents(const std::string& connection, const OutputOptions& options, DataTable* table);
} // namespace dbapi::tool
