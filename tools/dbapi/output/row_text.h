#pragma once

#include "dbapi/read/value_column.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi::tool {
/// How a row is written.
enum class RowForm {
    Csv,       ///< RFC 4180; lines end in LF
    Lines,     ///< values between tabs; a tab, CR or LF in a value appears as \t, \r or \n
    JsonLine,  ///< an object and an LF
    JsonMember ///< an object behind a comma
};

/// A text as JSON writes it, in quotes.
std::string json_text(const std::string& text);

/// The line of the headings, in the form `Csv` or `Lines`.
std::string heading_text(const std::vector<ValueColumn>& columns, RowForm form);

/// Writes the first `rows` rows, some at a time; they are made on all processors.
void write_rows(
    const ColumnTable& table,
    std::size_t rows,
    RowForm form,
    const std::function<void(std::string_view)>& write);

/// Writes the first `rows` values of a column as JSON, with commas between them.
void write_json_values(
    const ValueColumn& column,
    std::size_t rows,
    const std::function<void(std::string_view)>& write);
} // namespace dbapi::tool
