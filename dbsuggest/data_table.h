#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dbapi {
/// One column of data, as text.
struct DataColumn
{
    /// The origin of the texts: words of the program, texts of a database, or its numbers. An empty
    /// one of the last two is 'no value'.
    enum class Content { Words, Texts, Numbers };

    std::string heading;
    std::vector<std::string> values;
    Content content = Content::Words;
};

/// The part of JSON that is not the data.
struct DataHeading
{
    /// Written before the data: what was asked.
    std::vector<std::pair<std::string, std::string>> asked;
    /// Unless it is asked for otherwise, the data is one list of columns, {"columns": [{"keyword":
    /// ..., "values": [...]}]}, or, where this is given, a list of that name with an object per
    /// row.
    std::string rowsName;
};

/// Data in columns of equal length.
struct DataTable
{
    /// Both as in `DataHeading`.
    std::vector<std::pair<std::string, std::string>> asked;
    std::string rowsName;
    std::vector<DataColumn> columns;

    [[nodiscard]] std::size_t rows() const
    {
        return columns.empty() ? 0 : columns.front().values.size();
    }
};
} // namespace dbapi
