#include "dbexplain/explain.h"
#include "dbexplain/explanation_json.h"
#include "dbexplain/explanation_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
enum class ExplainFormat { Text, Json };

struct ExplainOptions
{
    DataRequest request;
    ExplainFormat format = ExplainFormat::Text;
};

/// Adds the command that helps on where the query is not to blame.
void add_command_advice(Explanation* explanation)
{
    std::vector<std::string>& suggestions = explanation->nothing.suggestions;
    if (explanation->nothing.cause == NothingFound::Cause::NoRecords) {
        suggestions.push_back(
            "dbapi import " + explanation->connection + " PATH reads files into it.");
    } else if (explanation->nothing.cause == NothingFound::Cause::NoValues) {
        suggestions.push_back(
            "dbapi keys " + explanation->connection + " " +
            std::string(dbif::table_info(explanation->table).name) +
            " lists the keys that records have; -q QUERY those of the selected ones.");
    }
}

ExitCode show_explanation(const ExplainOptions& options)
{
    const DataRequest& request = options.request;
    if (request.keywords.empty() && request.query.empty()) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            "there is nothing to explain: give keywords, a query (-q), or both.\nSee: dbapi explain --help");
    }
    known_connection(request.connection);
    Explanation explanation;
    try {
        explanation = explain(request);
    } catch (const FaultError& error) {
        throw_call_failure(request, error.fault());
    }
    add_command_advice(&explanation);
    write_text(
        options.format == ExplainFormat::Json
            ? explanation_json(explanation)
            : explanation_text(explanation, line_width(), shows_colours(stdout)));
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_explain(CLI::App& arguments)
{
    const auto options = std::make_shared<ExplainOptions>();
    add_connection_argument(arguments, &options->request.connection);
    arguments.add_option(
        "KEYWORD", options->request.keywords,
        "the keywords of the read to explain; without one, which records the query selects");
    add_query_option(arguments, &options->request.query);
    // In the order of ExplainFormat.
    add_format_option(
        arguments, {"text", "json"},
        [options](std::size_t choice) { options->format = static_cast<ExplainFormat>(choice); },
        "the format of the output (text)");
    return [options] {
        return show_explanation(*options);
    };
}
} // namespace dbapi::tool
