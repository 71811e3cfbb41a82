#include "dbapi/words/builtin_keynames.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
CommandRunner declare_builtins(CLI::App& arguments)
{
    const auto output = std::make_shared<OutputOptions>();
    add_output_options(arguments, output.get());
    return [output] {
        DataTable table{{}, "builtins", {{"keyname", {}}, {"column", {}}}};
        for (const auto& [keyname, column] : build_builtin_keywords(false)) {
            table.columns[0].values.push_back(keyname);
            table.columns[1].values.push_back(column);
        }
        write_data(table, *output);
        return ExitCode::Done;
    };
}
} // namespace dbapi::tool
