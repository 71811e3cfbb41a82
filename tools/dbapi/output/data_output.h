#pragma once

#include "tools/dbapi/output/data_table.h"

#include <optional>
#include <string>

// NOLINTNEXTLINE(readability-identifier-naming): the library's name
namespace CLI {
class App;
}

namespace dbapi::tool {
enum class Format { Table, Csv, Json, Lines };

/// How a command writes its data.
struct OutputOptions
{
    /// Nothing: a table on a terminal, CSV elsewhere.
    std::optional<Format> format;
    /// Whether a table on a terminal has all rows, however many.
    bool all = false;
};

/// Adds `--format` and `--all`. `options` outlives the app.
void add_output_options(CLI::App& arguments, OutputOptions* options);

Format chosen_format(const OutputOptions& options);

/// Writes the data to standard output.
///   csv    RFC 4180, a header line first; lines end in LF
///   json   one object on one line
///   lines  a line per row, values separated by tabs; a tab, CR or LF in a value appears as \t, \r
///          or \n
///   table  for people: aligned, with escapes for characters that cannot be shown; on a terminal
///          shortened to its height unless `all` is set
/// CSV, JSON and lines are always complete. Throws `CommandFailure` when it cannot be written.
void write_data(const DataTable& table, const OutputOptions& options);

/// Writes a text to standard output as it is. Throws `CommandFailure` when it cannot be written.
void write_text(const std::string& text);
} // namespace dbapi::tool
