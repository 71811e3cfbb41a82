#include "dbapi/db_setup.h"

#include "tools/dbapi/call_failure.h"
#include "tools/dbapi/command_table.h"
#include "tools/dbapi/data_output.h"
#include "tools/dbapi/stored_names.h"

#include <CLI/CLI.hpp>
#include <memory>
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

ExitCode show_setup(const SetupOptions& options)
{
    stored_connection(options.connection);
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
    write_data(table, options.output);
    return ExitCode::Done;
}

ExitCode show_header(const SetupOptions& options)
{
    stored_connection(options.connection);
    std::string header;
    std::string errors;
    if (!db_get_column_dataheader_from_setup_id(
            options.connection, options.id, options.column, &header, &errors)) {
        throw_call_failure({options.connection, {}, ""}, errors);
    }
    write_data(
        {{{"connection", options.connection}, {"id", std::to_string(options.id)}},
         "",
         {{options.column, {header}}}},
        options.output);
    return ExitCode::Done;
}

std::shared_ptr<SetupOptions> declare_options(CLI::App& arguments)
{
    auto options = std::make_shared<SetupOptions>();
    arguments.add_option("CONNECTION", options->connection, "a stored connection")->required();
    arguments
        .add_option("ID", options->id, "the setup's id; dbapi ids CONNECTION setup lists them")
        ->required();
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
