#include "dbapi/call/cache_refresh.h"
#include "dbapi/call/call_cache.h"
#include "dbapi/query_terms.h"
#include "dbapi/wall/condition_builder.h"
#include "dbapi/words/text_rules.h"
#include "dbexplain/key_explanation.h"
#include "dbexplain/nothing_found.h"
#include "dbexplain/query_explanation.h"
#include "dbexplain/read_explanation.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/table_graph.h"
#include "dbsuggest/call_failure.h"
#include "dbsuggest/stored_names.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/explanation_json.h"
#include "tools/dbapi/output/explanation_text.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

namespace dbapi::tool {
namespace {
/// Lines that do not go to a terminal.
constexpr std::size_t kUsualWidth = 100;

enum class ExplainFormat { Text, Json };

struct ExplainOptions
{
    DataRequest request;
    ExplainFormat format = ExplainFormat::Text;
};

/// The connection that the library keeps open for the calls that follow.
DBIF_Connection kept_connection(const DataRequest& request)
{
    stored_connection(request.connection);
    std::string errors;
    if (!dbapi_initialize_global_cache(request.connection, "", &errors) ||
        dbapi_get_cached_connection() == nullptr) {
        throw_call_failure(request, errors);
    }
    return *dbapi_get_cached_connection();
}

std::unique_ptr<const DBIF_QueryCondition>
build_condition(DBIF_Connection& connection, const DataRequest& request, bool* latestOnly)
{
    DBIF_QueryCondition* built = nullptr;
    std::string errors;
    if (!dbapi_get_query_str_dbif_query_condition_ptr(
            connection, request.query, &built, latestOnly, &errors)) {
        throw_call_failure(request, errors);
    }
    const CallCondition owned(built);
    // The cache may drop its own while this one is still needed.
    return std::unique_ptr<const DBIF_QueryCondition>(owned->clone());
}

std::set<std::string> compared_keywords(const std::string& query)
{
    std::set<std::string> keywords;
    std::string ignored;
    if (!query.empty()) {
        collect_term_keywords(*parse_query_syntax(query, false), &keywords, &ignored);
    }
    return keywords;
}

/// The table that the read gives rows of: where the asked keys meet, or else the compared ones.
dbif::RecordTable counted_table(const Explanation& explanation)
{
    dbif::TableSet tables;
    for (const KeyExplanation& key : explanation.keys) {
        const dbif::TableFacts* table = dbif::find_table(key.found.key.tablename);
        if (table != nullptr && (key.isAsked || explanation.keywords.empty())) {
            tables.add(table->table);
        }
    }
    return tables.isEmpty() ? dbif::RecordTable::Setup : dbif::meeting_table(tables);
}

std::string why_latest(const Explanation& explanation)
{
    const dbif::RecordTable table = explanation.table;
    const std::size_t superseded = explanation.recordsInAll - explanation.records;
    if (!explanation.latestOnly) {
        return "They count: the query begins with \"ALLDATA:\".";
    }
    std::string text;
    switch (table) {
    case dbif::RecordTable::Setup:
        text = "They do not count: of setups that were measured again the same way, only the "
               "latest is read.";
        break;
    case dbif::RecordTable::Measurement:
    case dbif::RecordTable::MeasurementCondition:
        text = "They do not count: of measurements that were made again, only the latest is read.";
        break;
    default:
        return "There are none of this table, and conditions on measurements and setups look at "
               "the latest only. \"ALLDATA:\" in front of the query makes the others count too.";
    }
    text += superseded == 0 ? " At present there is none"
                            : " That leaves out " + records_text(superseded, table);
    return text + ". \"ALLDATA:\" in front of the query makes all count.";
}

Explanation explain(const DataRequest& request)
{
    Explanation explanation;
    explanation.connection = request.connection;
    explanation.keywords = request.keywords;
    explanation.query = request.query;
    DBIF_Connection connection = kept_connection(request);
    explanation.engine = connection.dialect().name();
    const auto condition = build_condition(connection, request, &explanation.latestOnly);
    const std::string query = query_without_command(request.query);
    explanation.keys = explain_keys(
        connection, request.keywords, compared_keywords(query), *condition, explanation.latestOnly);
    explanation.table = counted_table(explanation);
    explanation.isOfPoints =
        std::any_of(explanation.keys.begin(), explanation.keys.end(), [](const auto& key) {
            return key.isAsked && key.isOnPoints();
        });

    // The read finds nothing prepared: neither condition nor keys.
    dbif::ColumnStore::of(connection).refresh();
    std::string errors;
    if (!explain_read(connection, request, explanation.table, &explanation.read, &errors)) {
        throw_call_failure(request, errors);
    }

    RecordCounter counter(connection, explanation.table, explanation.latestOnly);
    explanation.records = counter.count(nullptr).records;
    explanation.recordsInAll =
        explanation.latestOnly
            ? RecordCounter(connection, explanation.table, false).count(nullptr).records
            : explanation.records;
    if (!query.empty()) {
        explanation.tree =
            explain_tree(connection, query, explanation.keys, explanation.latestOnly, &errors);
        if (!explanation.tree.has_value()) {
            throw CommandFailure(ExitCode::WrongUsage, dbif::trimmed(errors));
        }
        counter.countTree(&*explanation.tree);
    }
    explanation.whyLatest = why_latest(explanation);
    explanation.nothing = explain_nothing(connection, explanation);
    return explanation;
}

ExitCode show_explanation(const ExplainOptions& options)
{
    const DataRequest& request = options.request;
    if (request.keywords.empty() && request.query.empty()) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            "say what to explain: keywords, a query (-q), or both.\nSee: dbapi explain --help");
    }
    const Explanation explanation = explain(request);
    write_text(
        options.format == ExplainFormat::Json
            ? explanation_json(explanation)
            : explanation_text(
                  explanation, is_terminal(stdout) ? terminal_size(stdout).columns : kUsualWidth,
                  shows_colours(stdout)));
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
        "how to write it (text)");
    return [options] {
        return show_explanation(*options);
    };
}
} // namespace dbapi::tool
