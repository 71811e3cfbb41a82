#pragma once

#include "dbapi/read/value_column.h"
#include "dbsuggest/data_table.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// NOLINTNEXTLINE(readability-identifier-naming): the library's name
namespace CLI {
class App;
}

namespace dbapi::tool {
enum class Format { Table, Csv, Tsv, Json, JsonLines, Lines };
/// How JSON holds data: an object per row, or a list per column.
enum class JsonShape { Rows, Columns };

/// How a command writes its data.
struct OutputOptions
{
    /// Nothing: what the name of the file ends in; else a table on a terminal, CSV elsewhere.
    std::optional<Format> format;
    /// Nothing: as the data is usually asked for.
    std::optional<JsonShape> shape;
    /// Tells whether a table on a terminal has all rows, however many.
    bool all = false;
    /// The number of rows that are written at most.
    std::optional<std::size_t> limit;
    /// Tells whether only the number of rows is written.
    bool isCount = false;
    /// Where to; empty: standard output.
    std::string file;
};

/// Adds `--format`, `--json`, `--all`, `--limit`, `--count` and `-o`. `options` outlives the app.
void add_output_options(CLI::App& arguments, OutputOptions* options);

/// The long names of these options.
std::vector<std::string> output_option_names();

Format chosen_format(const OutputOptions& options);

/// Tells whether the format tells numbers from texts.
bool is_typed(Format format);

/// Tells whether this output needs all rows at once, in one batch.
bool needs_all_rows(const DataHeading& heading, const OutputOptions& options);

/// Gives the next rows; false, with nothing in `batch` to be looked at, behind the last ones.
using BatchSource = std::function<bool(ColumnTable* batch)>;

/// Writes data, and returns the number of rows that were written, or counted.
///   csv    RFC 4180, a header line first; lines end in LF
///   tsv    the same as `lines`, with a header line
///   json   one object on one line, with an object per row or a list per column
///   jsonl  an object per row, each on a line of its own
///   lines  a line per row, values separated by tabs; a tab, CR or LF in a value appears as \t, \r
///          or \n
///   table  for people: aligned, with escapes for characters that cannot be shown; on a terminal
///          shortened to its height unless `all` is set
/// In JSON, numbers of the database are numbers, complex ones pairs of them, and 'no value' is
/// null. All but tables are always complete up to the limit. A file is replaced only once it is
/// complete. `columns` say what the batches hold. Throws `CommandFailure` when the output cannot be
/// written; what `next` throws passes.
std::size_t write_batches(
    const DataHeading& heading,
    const std::vector<ValueColumn>& columns,
    const BatchSource& next,
    const OutputOptions& options);

/// The same for a table of texts.
void write_data(const DataTable& table, const OutputOptions& options);

/// Writes a text to standard output as it is. Throws `CommandFailure` when it cannot be written.
void write_text(const std::string& text);
} // namespace dbapi::tool
