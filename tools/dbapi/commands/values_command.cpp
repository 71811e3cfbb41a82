#include "dbapi/words/text_rules.h"
#include "dbexplain/value_reading.h"
#include "dbsuggest/display_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/column_contents.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/plot_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

namespace dbapi::tool {
namespace {
struct ValuesOptions
{
    DataRequest request;
    bool isDistinct = false;
    OutputOptions output;
    PlotOptions plot;
};

void tell_nothing_found(const DataRequest& request, bool isPlot)
{
    std::string text =
        isPlot && request.keywords.size() > 1
            ? "nothing to draw: no sweep or record has values of both " + request.keywords.front() +
                  " and " + request.keywords.back()
            : "nothing found: no record has a value of " + listed(request.keywords, " or ");
    if (!request.query.empty()) {
        text += " and fits the query " + dbapi::quoted(request.query) +
                ". Loosen the query, or put \"ALLDATA:\" in front to count superseded records too; "
                "dbapi explain with the same arguments tells which term leaves nothing.";
    } else {
        text += ".";
    }
    tell_error(text);
}

ExitCode show_values(const ValuesOptions& options)
{
    const DataRequest& request = options.request;
    known_connection(request.connection);
    if (!options.plot.file.empty()) {
        const bool isDrawn = plot_values(request, options.plot);
        tell_notes(request.query);
        if (isDrawn) {
            return ExitCode::Done;
        }
        tell_nothing_found(request, true);
        return ExitCode::NothingFound;
    }
    std::vector<std::vector<std::string>> values;
    std::string errors;
    if (!read_values(request, options.isDistinct, &values, &errors)) {
        throw_call_failure(request, errors);
    }
    tell_notes(request.query);
    DataTable table;
    table.asked = {{"connection", request.connection}, {"query", request.query}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        table.columns.push_back({request.keywords[i], std::move(values[i])});
    }
    set_contents(request.connection, options.output, &table);
    write_data(table, options.output);
    if (table.rows() == 0) {
        tell_nothing_found(request, false);
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_values(CLI::App& arguments)
{
    const auto options = std::make_shared<ValuesOptions>();
    add_connection_argument(arguments, &options->request.connection);
    arguments
        .add_option(
            "KEYWORD", options->request.keywords,
            "a key (W, DEVD.W, \"Key(W,device)\") or builtin keyname ('$DEVNAME'); several stand "
            "side by side")
        ->required();
    add_query_option(arguments, &options->request.query);
    arguments.add_flag("--distinct", options->isDistinct, "leave out repeated values or rows");
    add_output_options(arguments, &options->output);
    add_plot_options(arguments, &options->plot);
    arguments.footer(
        arguments.get_footer() + "\nWhich keys there are, and their smallest and largest values:\n"
                                 "         dbapi keys lab device");
    return [options] {
        return show_values(*options);
    };
}
} // namespace dbapi::tool
