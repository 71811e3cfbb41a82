#include "dbapi/dbapi.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
CommandRunner declare_tables(CLI::App& arguments)
{
    const auto output = std::make_shared<OutputOptions>();
    add_output_options(arguments, output.get());
    return [output] {
        std::set<std::string> names;
        db_get_tablenames(&names);
        write_data({{}, "tables", {{"table", {names.begin(), names.end()}}}}, *output);
        return ExitCode::Done;
    };
}
} // namespace dbapi::tool
