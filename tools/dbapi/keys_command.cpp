#include "dbapi/dbapi.h"

#include "tools/dbapi/call_failure.h"
#include "tools/dbapi/command_table.h"
#include "tools/dbapi/data_output.h"
#include "tools/dbapi/record_tables_argument.h"
#include "tools/dbapi/stored_names.h"
#include "tools/dbapi/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

namespace dbapi::tool {
namespace {
struct KeysOptions
{
    DataRequest request;
    std::string table;
    bool isShort = false;
    OutputOptions output;
};

ExitCode show_keys(const KeysOptions& options)
{
    const DataRequest& request = options.request;
    stored_connection(request.connection);
    std::set<std::string> keys;
    std::string errors;
    if (!db_get_keynames_in_table(
            request.connection, options.table, &keys, request.query,
            options.isShort ? "SHORT" : "FULL", &errors)) {
        throw_call_failure(request, errors);
    }
    write_data(
        {{{"connection", request.connection}, {"table", options.table}, {"query", request.query}},
         "keys",
         {{"key", {keys.begin(), keys.end()}}}},
        options.output);
    if (keys.empty()) {
        tell_error(
            "no record of the table " + options.table +
            (request.query.empty() ? " has a key." : " that fits the query has a key.") +
            " Its fixed columns are reached by builtin keynames: dbapi builtins lists them.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_keys(CLI::App& arguments)
{
    const auto options = std::make_shared<KeysOptions>();
    arguments.add_option("CONNECTION", options->request.connection, "a stored connection")
        ->required();
    add_table_argument(arguments, &options->table);
    arguments.add_flag("--short", options->isShort, "the key names alone");
    arguments.add_option("-q,--query", options->request.query, "keys of the records that fit it")
        ->type_name("QUERY");
    add_output_options(arguments, &options->output);
    return [options] {
        return show_keys(*options);
    };
}
} // namespace dbapi::tool
