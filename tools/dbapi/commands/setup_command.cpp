#include "dbapi/db_records.h"
#include "dbapi/db_setup.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/column_contents.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <set>
#include <utility>

namespace dbapi::tool {
namespace {
struct SetupOptions
{
    std::string connection;
    int id = 0;
    std::string column;
    OutputOptions output;
};

/// Tells whether there is such a setup, superseded ones included; says so when there is none.
bool is_stored(const SetupOptions& options)
{
    const DataRequest request{
        options.connection, {}, "ALLDATA:$SETDBID=" + std::to_string(options.id)};
    std::set<int> ids;
    std::string errors;
    if (!dbapi_get_table_ids_from_query_for_tablename(
            request.connection, "setup", &ids, request.query, &errors)) {
        throw_call_failure(request, errors);
    }
    if (ids.empty()) {
        tell_error(
            "nothing found: there is no setup with id " + std::to_string(options.id) +
            ". dbapi ids " + options.connection + " setup lists them.");
    }
    return !ids.empty();
}

ExitCode show_setup(const SetupOptions& options)
{
    known_connection(options.connection);
    if (!is_stored(options)) {
        return ExitCode::NothingFound;
    }
    std::vector<std::string> keys;
    std::vector<std::vector<std::string>> values;
    std::string errors;
    if (!db_get_setup_keys_values_for_setup_id_as_text(
            options.connection, options.id, &keys, &values, &errors)) {
        throw_call_failure({options.connection, {}, ""}, errors);
    }
    DataTable table{
        {{"connection", options.connection}, {"id", std::to_string(options.id)}}, "", {}};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        table.columns.push_back({keys[i], std::move(values[i])});
    }
    set_contents(options.connection, options.output, &table);
    write_data(table, options.output);
    return ExitCode::Done;
}

ExitCode show_header(const SetupOptions& options)
{
    known_connection(options.connection);
    if (!is_stored(options)) {
        return ExitCode::NothingFound;
    }
    std::string header;
    std::string errors;
    if (!db_get_column_dataheader_from_setup_id(
            options.connection, options.id, options.column, &header, &errors)) {
        throw_call_failure({options.connection, {}, ""}, errors);
    }
    write_data(
        {{{"connection", options.connection}, {"id", std::to_string(options.id)}},
         "",
         {{options.column, header.empty() ? std::vector<std::string>() : std::vector{header}}}},
        options.output);
    if (header.empty()) {
        tell_error(
            "nothing found: the setup with id " + std::to_string(options.id) +
            " has no header text for " + options.column + ", or no such key. dbapi setup " +
            options.connection + " " + std::to_string(options.id) + " shows its keys.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}

std::shared_ptr<SetupOptions> declare_options(CLI::App& arguments)
{
    auto options = std::make_shared<SetupOptions>();
    add_connection_argument(arguments, &options->connection);
    add_id_argument(
        arguments, &options->id, "the setup's id; dbapi ids CONNECTION setup lists them");
    add_output_options(arguments, &options->output);
    return options;
}
} // namespace

CommandRunner declare_setup(CLI::App& arguments)
{
    const auto options = declare_options(arguments);
    return [options] {
        return show_setup(*options);
    };
}

CommandRunner declare_header(CLI::App& arguments)
{
    const auto options = declare_options(arguments);
    arguments.add_option("COLUMN", options->column, "the name of one of the setup's keys")
        ->required();
    return [options] {
        return show_header(*options);
    };
}
} // namespace dbapi::tool
