#include "tools/dbapi/output/data_output.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/table_text.h"

#include "tools/dbapi/arguments/command_failure.h"
#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/output/terminal.h"

#include <QSaveFile>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>

namespace dbapi::tool {
namespace {
[[noreturn]] void throw_unwritable(const std::string& what, const std::string& reason)
{
    throw CommandFailure(ExitCode::File, what + " cannot be written: " + reason);
}

/// Collects output, so that a million rows are not a million writes.
class Output
{
    Q_DISABLE_COPY_MOVE(Output)

public:
    /// To that file, or to standard output when the name is empty.
    explicit Output(const std::string& file = {}) : name_(file), file_(dbif::to_qt(file))
    {
        if (!name_.empty() && !file_.open(QIODevice::WriteOnly)) {
            throwFault();
        }
    }

    ~Output() = default;

    Output& operator<<(std::string_view text)
    {
        pending_ += text;
        if (pending_.size() >= kBlockBytes) {
            write();
        }
        return *this;
    }

    void finish()
    {
        write();
        if (!name_.empty()) {
            if (!file_.commit()) {
                throwFault();
            }
        } else if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw_unwritable("standard output", std::strerror(errno));
        }
    }

private:
    static constexpr std::size_t kBlockBytes = 1U << 16U;

    [[noreturn]] void throwFault() const
    {
        throw_unwritable(
            "the file " + dbapi::quoted(name_), dbif::to_utf8(file_.errorString()) + ".");
    }

    void write()
    {
        if (name_.empty()) {
            std::fwrite(pending_.data(), 1, pending_.size(), stdout);
        } else if (
            file_.write(pending_.data(), static_cast<qint64>(pending_.size())) !=
            static_cast<qint64>(pending_.size())) {
            throwFault();
        }
        pending_.clear();
    }

    std::string name_;
    QSaveFile file_;
    std::string pending_;
};

void write_csv_cell(std::string_view value, bool isAlone, Output& out)
{
    // An empty line would be no row.
    const bool isBlankLine = isAlone && value.empty();
    if (!isBlankLine && value.find_first_of(",\"\r\n") == std::string_view::npos) {
        out << value;
        return;
    }
    out << "\"";
    for (std::size_t begin = 0; begin <= value.size();) {
        const std::size_t quote = value.find('"', begin);
        out << value.substr(begin, quote - begin);
        if (quote == std::string_view::npos) {
            break;
        }
        out << "\"\"";
        begin = quote + 1;
    }
    out << "\"";
}

void write_csv(const DataTable& table, std::size_t rows, Output& out)
{
    const bool isAlone = table.columns.size() == 1;
    const auto writeRow = [&](const auto& valueOf) {
        for (const DataColumn& column : table.columns) {
            out << (&column == &table.columns.front() ? "" : ",");
            write_csv_cell(valueOf(column), isAlone, out);
        }
        out << "\n";
    };
    writeRow([](const DataColumn& column) -> const std::string& { return column.heading; });
    for (std::size_t row = 0; row < rows; ++row) {
        writeRow(
            [row](const DataColumn& column) -> const std::string& { return column.values[row]; });
    }
}

void write_line_cell(std::string_view value, Output& out)
{
    constexpr std::string_view kBreaks = "\t\r\n";
    constexpr std::string_view kLetters = "trn";
    for (std::size_t at = value.find_first_of(kBreaks); at != std::string_view::npos;
         at = value.find_first_of(kBreaks)) {
        out << value.substr(0, at) << "\\" << kLetters.substr(kBreaks.find(value[at]), 1);
        value.remove_prefix(at + 1);
    }
    out << value;
}

void write_lines(const DataTable& table, std::size_t rows, bool hasHeader, Output& out)
{
    const auto writeRow = [&](const auto& valueOf) {
        for (const DataColumn& column : table.columns) {
            out << (&column == &table.columns.front() ? "" : "\t");
            write_line_cell(valueOf(column), out);
        }
        out << "\n";
    };
    if (hasHeader) {
        writeRow([](const DataColumn& column) -> const std::string& { return column.heading; });
    }
    for (std::size_t row = 0; row < rows; ++row) {
        writeRow(
            [row](const DataColumn& column) -> const std::string& { return column.values[row]; });
    }
}

std::string json_text(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// Tells whether a number stands in the text as JSON writes it, not as "nan".
bool is_json_number(const std::string& text)
{
    const std::size_t sign = text.front() == '-' ? 1 : 0;
    const char* end = text.data() + text.size();
    double number = 0;
    const auto read = std::from_chars(text.data(), end, number);
    return text.find_first_of("0123456789") == sign && read.ec == std::errc() && read.ptr == end;
}

void write_json_value(const DataColumn& column, std::size_t row, Output& out)
{
    const std::string& text = column.values[row];
    if (text.empty() && column.content != DataColumn::Content::Words) {
        out << "null";
    } else if (column.content == DataColumn::Content::Numbers && is_json_number(text)) {
        out << text;
    } else {
        out << json_text(text);
    }
}

void write_json_row(const DataTable& table, std::size_t row, Output& out)
{
    out << "{";
    for (const DataColumn& column : table.columns) {
        out << (&column == &table.columns.front() ? "" : ",") << json_text(column.heading) << ":";
        write_json_value(column, row, out);
    }
    out << "}";
}

void write_json_rows(
    const DataTable& table,
    std::size_t rows,
    std::string_view between,
    Output& out)
{
    for (std::size_t row = 0; row < rows; ++row) {
        out << (row == 0 ? "" : between);
        write_json_row(table, row, out);
    }
}

void write_json_columns(const DataTable& table, std::size_t rows, Output& out)
{
    for (const DataColumn& column : table.columns) {
        out << (&column == &table.columns.front() ? "" : ",")
            << "{\"keyword\":" << json_text(column.heading) << ",\"values\":[";
        for (std::size_t row = 0; row < rows; ++row) {
            out << (row == 0 ? "" : ",");
            write_json_value(column, row, out);
        }
        out << "]}";
    }
}

/// Written piece by piece: a document in memory would be many times as large as the data.
void write_json(const DataTable& table, std::size_t rows, Output& out)
{
    out << "{";
    for (const auto& [name, text] : table.asked) {
        out << json_text(name) << ":" << json_text(text) << ",";
    }
    if (table.rowsName.empty()) {
        out << "\"columns\":[";
        write_json_columns(table, rows, out);
    } else {
        out << json_text(table.rowsName) << ":[";
        write_json_rows(table, rows, ",", out);
    }
    out << "]}\n";
}

/// The number of rows that fit the height of the terminal.
std::size_t rows_on_terminal()
{
    constexpr std::size_t kFewestRows = 10;
    // The header line, the last line and the prompt.
    constexpr std::size_t kOtherLines = 4;
    const std::size_t height = terminal_size(stdout).rows;
    return std::max(height > kOtherLines ? height - kOtherLines : 0, kFewestRows);
}

void write_table(
    const DataTable& table,
    std::size_t rows,
    const OutputOptions& options,
    Output& out)
{
    const bool isOnTerminal = options.file.empty() && is_terminal(stdout);
    TableLayout layout{rows, isOnTerminal && shows_colours(stdout)};
    if (isOnTerminal && !options.all) {
        layout.shownRows = std::min(rows, rows_on_terminal());
        layout.isCut = true;
    }
    out << table_text(table, layout);
    const std::size_t hidden = rows - layout.shownRows;
    if (hidden > 0) {
        out << "... and " + counted(hidden, "more row") +
                   ". See all with --all, or with --format csv.\n";
    }
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
    add_format_option(
        arguments, {"table", "csv", "tsv", "json", "jsonl", "lines"},
        [options](std::size_t choice) { options->format = static_cast<Format>(choice); },
        "the format of the output (default: by the ending of FILE, else table on a terminal and csv elsewhere)");
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
    return {"--format", "--all", "--limit", "--count", "--output"};
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

void write_text(const std::string& text)
{
    Output out;
    out << text;
    out.finish();
}

void write_data(const DataTable& table, const OutputOptions& options)
{
    Output out(options.file);
    const std::size_t rows = std::min(table.rows(), options.limit.value_or(table.rows()));
    if (options.isCount) {
        out << std::to_string(rows) + "\n";
        out.finish();
        return;
    }
    switch (chosen_format(options)) {
    case Format::Table:
        write_table(table, rows, options, out);
        break;
    case Format::Csv:
        write_csv(table, rows, out);
        break;
    case Format::Tsv:
    case Format::Lines:
        write_lines(table, rows, chosen_format(options) == Format::Tsv, out);
        break;
    case Format::Json:
        write_json(table, rows, out);
        break;
    case Format::JsonLines:
        write_json_rows(table, rows, "\n", out);
        out << (rows > 0 ? "\n" : "");
        break;
    }
    out.finish();
}
} // namespace dbapi::tool
