#include "dbapi/words/text_rules.h"
#include "dbsuggest/display_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/plot_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"
#include "tools/dbapi/output/value_output.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
struct ValuesOptions
{
    DataRequest request;
    ColumnOptions columns;
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
    if (options.columns.descending && options.columns.order != ColumnOptions::Order::Sorted) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            "--desc sorts, and --order stored leaves rows as they are. Leave one of them out.");
    }
    if (write_values(request, options.columns, options.output) == 0) {
        tell_nothing_found(request, false);
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

namespace {
/// Which rows there are, in which order, and what tells them apart.
void add_order_options(CLI::App& arguments, ColumnOptions* options)
{
    CLI::Option* distinct =
        arguments.add_flag("--distinct", options->distinct, "leave out repeated values or rows");
    // As places in ColumnOptions::Order.
    add_choice_option(
        arguments, "--order", {"sorted", "stored"},
        [options](std::size_t choice) {
            options->order =
                choice == 0 ? ColumnOptions::Order::Sorted : ColumnOptions::Order::Stored;
        },
        "by the values, the first keyword first (sorted); or as they were imported, points as "
        "they were measured (stored)");
    arguments.add_flag("--desc", options->descending, "sorted the other way round, largest first");
    arguments
        .add_flag_callback(
            "--ids", [options] { options->withIds = options->withPoints = true; },
            "add the id of each row's record, and of points their setup and their place in it")
        ->excludes(distinct);
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
    add_order_options(arguments, &options->columns);
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
