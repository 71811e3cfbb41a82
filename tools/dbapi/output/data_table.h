#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dbapi::tool {
struct DataColumn
{
    std::string heading;
    std::vector<std::string> values;
};

/// Data in columns of equal length.
struct DataTable
{
    /// Written into JSON before the data: what was asked.
    std::vector<std::pair<std::string, std::string>> asked;
    /// In JSON the data is one list of columns, {"columns": [{"keyword": ..., "values": [...]}]},
    /// or, where this is given, a list of that name with an object per row.
    std::string rowsName;
    std::vector<DataColumn> columns;

    [[nodiscard]] std::size_t rows() const
    {
        return columns.empty() ? 0 : columns.front().values.size();
    }
};
} // namespace dbapi::tool
