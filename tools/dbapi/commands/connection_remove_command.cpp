#include "dbapi/dbapi.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbui/connections_file.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
ExitCode remove_connection(const std::string& name)
{
    const DbuiConnection record = stored_connection(name);
    std::string errors;
    if (!db_remove_connection(name, &errors)) {
        const std::string fault = dbui::fault_of_saving();
        throw CommandFailure(
            fault.empty() ? ExitCode::Connection : ExitCode::File,
            dbif::trimmed(dbif::trimmed(errors) + "\n" + fault));
    }
    talk(
        "Removed the connection " + dbapi::quoted(name) + ". Its database " +
        dbapi::quoted(record.get_databaseName()) + " stays as it is.");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_connection_remove(CLI::App& arguments)
{
    const auto name = std::make_shared<std::string>();
    arguments.add_option("NAME", *name, "a stored connection")->required();
    return [name] {
        return remove_connection(*name);
    };
}
} // namespace dbapi::tool
