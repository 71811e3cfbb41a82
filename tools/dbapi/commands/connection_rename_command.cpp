#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbui/connection_registry.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace dbapi::tool {
namespace {
struct RenameOptions
{
    std::string name;
    std::string newName;
};

ExitCode rename_connection(const RenameOptions& options)
{
    const DbuiConnection before = stored_connection(options.name);
    const std::string newName = dbif::trimmed(options.newName);
    if (newName.empty()) {
        throw CommandFailure(ExitCode::WrongUsage, "the new name is empty. Give one.");
    }
    if (stored_names().contains(newName)) {
        throw CommandFailure(
            ExitCode::Connection, "there is a connection " + dbapi::quoted(newName) +
                                      " already. Choose another name, or remove that one first.");
    }
    const DbuiConnection after(
        newName, before.get_dbDriverName(), before.get_hostname(), before.get_port_as_string(),
        before.get_databaseName(), before.get_databaseUsername(), before.get_databasePassword());
    std::string error;
    if (!dbui_update_connection(before, after, false, &error)) {
        throw CommandFailure(ExitCode::Connection, dbif::trimmed(error));
    }
    talk(
        "Renamed the connection " + dbapi::quoted(options.name) + " to " + dbapi::quoted(newName) +
        ".");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_connection_rename(CLI::App& arguments)
{
    const auto options = std::make_shared<RenameOptions>();
    arguments.add_option("NAME", options->name, "a stored connection")->required();
    arguments.add_option("NEWNAME", options->newName, "the new name")->required();
    return [options] {
        return rename_connection(*options);
    };
}
} // namespace dbapi::tool
