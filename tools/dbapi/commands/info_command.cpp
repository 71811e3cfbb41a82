#include "dbapi/words/fault.h"
#include "dbinfo/database_info.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/info_text.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
struct InfoOptions
{
    std::string connection;
    bool isJson = false;
};

ExitCode show_info(const InfoOptions& options)
{
    known_connection(options.connection);
    DatabaseInfo info;
    try {
        info = database_info(options.connection);
    } catch (const FaultError& error) {
        throw_call_failure({options.connection, {}, ""}, error.fault());
    }
    write_text(
        options.isJson ? info_json(info) : info_text(info, line_width(), shows_colours(stdout)));
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_info(CLI::App& arguments)
{
    const auto options = std::make_shared<InfoOptions>();
    add_connection_argument(arguments, &options->connection);
    add_format_option(
        arguments, {"text", "json"},
        [options](std::size_t choice) { options->isJson = choice == 1; },
        "the format of the output (text)");
    return [options] {
        return show_info(*options);
    };
}
} // namespace dbapi::tool
