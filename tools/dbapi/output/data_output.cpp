#include "tools/dbapi/output/data_output.h"

#include "dbsuggest/command_failure.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/output/table_output.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>

namespace dbapi::tool {
namespace {
/// Collects output, so that a million rows are not a million writes.
class Output
{
public:
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
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw CommandFailure(
                ExitCode::File,
                std::string("standard output cannot be written: ") + std::strerror(errno));
        }
    }

private:
    static constexpr std::size_t kBlockBytes = 1U << 16U;

    void write()
    {
        std::fwrite(pending_.data(), 1, pending_.size(), stdout);
        pending_.clear();
    }

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

void write_csv(const DataTable& table, Output& out)
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
    for (std::size_t row = 0; row < table.rows(); ++row) {
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

void write_lines(const DataTable& table, Output& out)
{
    for (std::size_t row = 0; row < table.rows(); ++row) {
        for (const DataColumn& column : table.columns) {
            out << (&column == &table.columns.front() ? "" : "\t");
            write_line_cell(column.values[row], out);
        }
        out << "\n";
    }
}

std::string json_text(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void write_json_rows(const DataTable& table, Output& out)
{
    for (std::size_t row = 0; row < table.rows(); ++row) {
        out << (row == 0 ? "{" : ",{");
        for (const DataColumn& column : table.columns) {
            out << (&column == &table.columns.front() ? "" : ",") << json_text(column.heading)
                << ":" << json_text(column.values[row]);
        }
        out << "}";
    }
}

void write_json_columns(const DataTable& table, Output& out)
{
    for (const DataColumn& column : table.columns) {
        out << (&column == &table.columns.front() ? "" : ",")
            << "{\"keyword\":" << json_text(column.heading) << ",\"values\":[";
        for (const std::string& value : column.values) {
            out << (&value == column.values.data() ? "" : ",") << json_text(value);
        }
        out << "]}";
    }
}

/// Written piece by piece: a document in memory would be many times as large as the data.
void write_json(const DataTable& table, Output& out)
{
    out << "{";
    for (const auto& [name, text] : table.asked) {
        out << json_text(name) << ":" << json_text(text) << ",";
    }
    if (table.rowsName.empty()) {
        out << "\"columns\":[";
        write_json_columns(table, out);
    } else {
        out << json_text(table.rowsName) << ":[";
        write_json_rows(table, out);
    }
    out << "]}\n";
}
} // namespace

void add_output_options(CLI::App& arguments, OutputOptions* options)
{
    // In the order of Format.
    add_format_option(
        arguments, {"table", "csv", "json", "lines"},
        [options](std::size_t choice) { options->format = static_cast<Format>(choice); },
        "how to write it (table on a terminal, else csv)");
    arguments.add_flag("--all", options->all, "show every row of a table on a terminal");
}

Format chosen_format(const OutputOptions& options)
{
    return options.format.value_or(is_terminal(stdout) ? Format::Table : Format::Csv);
}

void write_text(const std::string& text)
{
    Output out;
    out << text;
    out.finish();
}

void write_data(const DataTable& table, const OutputOptions& options)
{
    Output out;
    switch (chosen_format(options)) {
    case Format::Table:
        out << table_text(table, is_terminal(stdout) && !options.all);
        break;
    case Format::Csv:
        write_csv(table, out);
        break;
    case Format::Json:
        write_json(table, out);
        break;
    case Format::Lines:
        write_lines(table, out);
        break;
    }
    out.finish();
}
} // namespace dbapi::tool
