#include "tools/dbapi/output/data_output.h"

#include "dbapi/words/text_rules.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/table_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/output/output_stream.h"
#include "tools/dbapi/output/row_text.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>

namespace dbapi::tool {
namespace {
/// The number of rows that fit the height of the terminal.
std::size_t rows_on_terminal()
{
    constexpr std::size_t kFewestRows = 10;
    // The header line, the last line and the prompt.
    constexpr std::size_t kOtherLines = 4;
    const std::size_t height = terminal_size(stdout).rows;
    return std::max(height > kOtherLines ? height - kOtherLines : 0, kFewestRows);
}

/// Tells whether a table shows only what fits the terminal.
bool is_cut(const OutputOptions& options)
{
    return options.file.empty() && is_terminal(stdout) && !options.all;
}

JsonShape chosen_shape(const DataHeading& heading, const OutputOptions& options)
{
    return options.shape.value_or(heading.rowsName.empty() ? JsonShape::Columns : JsonShape::Rows);
}

/// Writes data that comes batch by batch, in one of the formats.
class DataWriter
{
public:
    DataWriter(
        const DataHeading& heading,
        const std::vector<ValueColumn>& columns,
        const OutputOptions& options)
        : heading_(heading),
          columns_(columns),
          options_(options),
          format_(chosen_format(options)),
          shape_(chosen_shape(heading, options)),
          out_(options.file),
          write_([this](std::string_view text) { writeText(text); })
    {}

    void begin()
    {
        if (options_.isCount) {
            return;
        }
        if (format_ == Format::Csv || format_ == Format::Tsv) {
            out_ << heading_text(columns_, row_form());
        } else if (format_ == Format::Json) {
            beginJson();
        }
    }

    /// The first `rows` rows of a batch.
    void add(const ColumnTable& batch, std::size_t rows)
    {
        if (!options_.isCount) {
            if (format_ == Format::Table) {
                addToTable(batch, rows);
            } else if (format_ == Format::Json && shape_ == JsonShape::Columns) {
                addJsonColumns(batch, rows);
            } else {
                write_rows(batch, rows, row_form(), write_);
            }
        }
        rows_ += rows;
    }

    void end()
    {
        if (options_.isCount) {
            out_ << std::to_string(rows_) + "\n";
        } else if (format_ == Format::Json) {
            if (shape_ == JsonShape::Columns && !hasColumns_) {
                addJsonColumns({columns_, 0}, 0);
            }
            out_ << "]}\n";
        } else if (format_ == Format::Table && rows_ > shown_) {
            out_ << "... and " + counted(rows_ - shown_, "more row") +
                        ". See all with --all, or with --format csv.\n";
        }
        out_.finish();
    }

    [[nodiscard]] std::size_t rows() const { return rows_; }

private:
    [[nodiscard]] RowForm row_form() const
    {
        switch (format_) {
        case Format::Csv:
            return RowForm::Csv;
        case Format::Json:
            return RowForm::JsonMember;
        case Format::JsonLines:
            return RowForm::JsonLine;
        default:
            return RowForm::Lines;
        }
    }

    void beginJson()
    {
        out_ << "{";
        for (const auto& [name, text] : heading_.asked) {
            out_ << json_text(name) << ":" << json_text(text) << ",";
        }
        const std::string rowsName = heading_.rowsName.empty() ? "rows" : heading_.rowsName;
        out_ << json_text(shape_ == JsonShape::Columns ? "columns" : rowsName) << ":[";
        // Rows come behind a comma each.
        dropsComma_ = shape_ == JsonShape::Rows;
    }

    void addJsonColumns(const ColumnTable& batch, std::size_t rows)
    {
        hasColumns_ = true;
        for (const ValueColumn& column : batch.columns) {
            out_ << (&column == &batch.columns.front() ? "" : ",")
                 << (heading_.rowsName.empty() ? "{\"keyword\":" : "{\"name\":")
                 << json_text(column.keyword) << ",\"values\":[";
            write_json_values(column, rows, write_);
            out_ << "]}";
        }
    }

    void addToTable(const ColumnTable& batch, std::size_t rows)
    {
        if (rows_ > 0) {
            return;
        }
        const bool isOnTerminal = options_.file.empty() && is_terminal(stdout);
        TableLayout layout{rows, isOnTerminal && shows_colours(stdout)};
        if (is_cut(options_)) {
            layout.shownRows = std::min(rows, rows_on_terminal());
            layout.isCut = true;
        }
        shown_ = layout.shownRows;
        out_ << table_text(texts_of(batch, shown_), layout);
    }

    static DataTable texts_of(const ColumnTable& batch, std::size_t rows)
    {
        DataTable table;
        for (const ValueColumn& column : batch.columns) {
            DataColumn& texts = table.columns.emplace_back();
            texts.heading = column.keyword;
            texts.values.resize(rows);
            for (std::size_t row = 0; row < rows; ++row) {
                column.appendText(row, &texts.values[row]);
            }
        }
        return table;
    }

    void writeText(std::string_view text)
    {
        text.remove_prefix(dropsComma_ && !text.empty() ? 1 : 0);
        dropsComma_ = dropsComma_ && text.empty();
        out_ << text;
    }

    const DataHeading& heading_;
    const std::vector<ValueColumn>& columns_;
    const OutputOptions& options_;
    Format format_;
    JsonShape shape_;
    OutputStream out_;
    std::function<void(std::string_view)> write_;
    bool dropsComma_ = false;
    bool hasColumns_ = false;
    std::size_t rows_ = 0;
    /// The rows of a table that are shown.
    std::size_t shown_ = 0;
};

template <typename Number>
std::optional<Number> read_number(const std::string& text)
{
    Number number{};
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

/// Fills `numbers`; false when a text is no number of that kind.
template <typename Number>
bool read_numbers(const std::vector<std::string>& texts, Number none, std::vector<Number>* numbers)
{
    for (const std::string& text : texts) {
        const auto number = text.empty() ? std::optional(none) : read_number<Number>(text);
        if (!number.has_value()) {
            numbers->clear();
            return false;
        }
        numbers->push_back(*number);
    }
    return true;
}

ValueColumn typed_column(const DataColumn& texts)
{
    ValueColumn column;
    column.keyword = texts.heading;
    if (texts.content == DataColumn::Content::Numbers) {
        column.type = ValueColumn::Type::Integer;
        if (read_numbers(texts.values, ValueColumn::kNoInteger, &column.integers)) {
            return column;
        }
        column.type = ValueColumn::Type::Number;
        if (read_numbers(texts.values, std::numeric_limits<double>::quiet_NaN(), &column.numbers)) {
            return column;
        }
    }
    column.type = ValueColumn::Type::Text;
    for (const std::string& text : texts.values) {
        const bool isNone = text.empty() && texts.content != DataColumn::Content::Words;
        column.codes.push_back(
            isNone ? ValueColumn::kNoText : static_cast<std::int32_t>(column.dictionary.size()));
        if (!isNone) {
            column.dictionary.push_back(text);
        }
    }
    return column;
}

/// The format that a file of that name has; nothing when its name does not tell.
std::optional<Format> format_of(const std::string& file)
{
    for (const auto& [ending, format] :
         {std::pair(".csv", Format::Csv), std::pair(".tsv", Format::Tsv),
          std::pair(".json", Format::Json), std::pair(".jsonl", Format::JsonLines),
          std::pair(".txt", Format::Table)}) {
        if (file.ends_with(ending)) {
            return format;
        }
    }
    return std::nullopt;
}
} // namespace

void add_output_options(CLI::App& arguments, OutputOptions* options)
{
    // In the order of Format.
    CLI::Option* format = add_format_option(
        arguments, {"table", "csv", "tsv", "json", "jsonl", "lines"},
        [options](std::size_t choice) { options->format = static_cast<Format>(choice); },
        "the format of the output (default: by the ending of FILE, else table on a terminal and csv elsewhere)");
    // In the order of JsonShape.
    add_choice_option(
        arguments, "--json", {"rows", "columns"},
        [options](std::size_t choice) {
            options->format = Format::Json;
            options->shape = static_cast<JsonShape>(choice);
        },
        "JSON with an object per row, or a list per column")
        ->excludes(format);
    arguments.add_flag("--all", options->all, "show every row of a table on a terminal");
    CLI::Option* limit = add_number_option(
        arguments, "--limit", [options](std::size_t rows) { options->limit = rows; },
        "write the first N rows only");
    arguments.add_flag("--count", options->isCount, "write only the number of rows")
        ->excludes(limit);
    arguments.add_option("-o,--output", options->file, "write into FILE instead")
        ->type_name("FILE");
}

std::vector<std::string> output_option_names()
{
    return {"--format", "--json", "--all", "--limit", "--count", "--output"};
}

Format chosen_format(const OutputOptions& options)
{
    const bool isForPeople = options.file.empty() && !options.isCount && is_terminal(stdout);
    return options.format.value_or(
        format_of(options.file).value_or(isForPeople ? Format::Table : Format::Csv));
}

bool is_typed(Format format)
{
    return format == Format::Json || format == Format::JsonLines;
}

bool needs_all_rows(const DataHeading& heading, const OutputOptions& options)
{
    const Format format = chosen_format(options);
    return !options.isCount &&
           ((format == Format::Table && !is_cut(options)) ||
            (format == Format::Json && chosen_shape(heading, options) == JsonShape::Columns));
}

void write_text(const std::string& text)
{
    OutputStream out;
    out << text;
    out.finish();
}

std::size_t write_batches(
    const DataHeading& heading,
    const std::vector<ValueColumn>& columns,
    const BatchSource& next,
    const OutputOptions& options)
{
    DataWriter writer(heading, columns, options);
    writer.begin();
    for (ColumnTable batch; next(&batch);) {
        const std::size_t allowed = options.limit.value_or(kAllRows) - writer.rows();
        writer.add(batch, std::min(batch.rows, allowed));
    }
    writer.end();
    return writer.rows();
}

void write_data(const DataTable& table, const OutputOptions& options)
{
    std::vector<ValueColumn> columns;
    for (const DataColumn& column : table.columns) {
        columns.push_back(typed_column(column));
    }
    bool isGiven = false;
    const auto give = [&](ColumnTable* batch) {
        if (std::exchange(isGiven, true)) {
            return false;
        }
        *batch = {columns, table.rows()};
        return true;
    };
    write_batches({table.asked, table.rowsName}, columns, give, options);
}
} // namespace dbapi::tool
