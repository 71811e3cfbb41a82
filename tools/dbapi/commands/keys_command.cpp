#include "dbapi/dbapi.h"
#include "dbif/host/host_number.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>

namespace dbapi::tool {
namespace {
struct KeysOptions
{
    DataRequest request;
    std::string table;
    bool isShort = false;
    OutputOptions output;
};

DataTable asked_table(const KeysOptions& options)
{
    const DataRequest& request = options.request;
    return {
        {{"connection", request.connection}, {"table", options.table}, {"query", request.query}},
        "keys",
        {}};
}

DataTable key_names(const KeysOptions& options)
{
    const DataRequest& request = options.request;
    std::set<std::string> keys;
    std::string errors;
    if (!db_get_keynames_in_table(
            request.connection, options.table, &keys, request.query, "SHORT", &errors)) {
        throw_call_failure(request, errors);
    }
    DataTable table = asked_table(options);
    table.columns = {{"key", {keys.begin(), keys.end()}}};
    return table;
}

DataTable key_statistics(const KeysOptions& options)
{
    const DataRequest& request = options.request;
    std::vector<KeyStatistics> keys;
    std::string errors;
    if (!db_get_key_statistics(request.connection, options.table, &keys, request.query, &errors)) {
        throw_call_failure(request, errors);
    }
    const auto number = [](std::optional<double> value) {
        return value.has_value() ? dbif::double_text(*value) : std::string();
    };
    constexpr auto kNumbers = DataColumn::Content::Numbers;
    DataTable table = asked_table(options);
    const auto add = [&](const char* heading, const auto& textOf,
                         DataColumn::Content content = DataColumn::Content::Words) {
        table.columns.push_back({heading, {}, content});
        std::transform(
            keys.begin(), keys.end(), std::back_inserter(table.columns.back().values), textOf);
    };
    add("key", [](const KeyStatistics& key) { return key.name; });
    add("table", [&options](const KeyStatistics& /*key*/) { return options.table; });
    add("category", [](const KeyStatistics& key) { return key.category; });
    add("datatype", [](const KeyStatistics& key) { return key.datatype; });
    add(
        "records", [](const KeyStatistics& key) { return std::to_string(key.records); }, kNumbers);
    if (options.table == "setup") {
        add(
            "points", [](const KeyStatistics& key) { return std::to_string(*key.points); },
            kNumbers);
    }
    add(
        "minimum", [&number](const KeyStatistics& key) { return number(key.minimum); }, kNumbers);
    add(
        "maximum", [&number](const KeyStatistics& key) { return number(key.maximum); }, kNumbers);
    return table;
}

ExitCode show_keys(const KeysOptions& options)
{
    known_connection(options.request.connection);
    const DataTable table = options.isShort ? key_names(options) : key_statistics(options);
    tell_notes(options.request.query);
    write_data(table, options.output);
    if (table.rows() == 0) {
        tell_error(
            "no record of the table " + options.table +
            (options.request.query.empty() ? " has a key." : " that fits the query has a key.") +
            " Its fixed columns are reached by builtin keynames: dbapi builtins lists them.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_keys(CLI::App& arguments)
{
    const auto options = std::make_shared<KeysOptions>();
    add_connection_argument(arguments, &options->request.connection);
    add_table_argument(arguments, &options->table);
    arguments.add_flag("--short", options->isShort, "the key names alone");
    add_query_option(
        arguments, &options->request.query, "only keys of the records that it selects");
    add_output_options(arguments, &options->output);
    arguments.footer(
        arguments.get_footer() +
        "\nNext, the values of a key:\n         dbapi values lab W --distinct");
    return [options] {
        return show_keys(*options);
    };
}
} // namespace dbapi::tool
