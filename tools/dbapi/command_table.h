#pragma once

#include "tools/dbapi/command_failure.h"

#include <functional>
#include <span>

// NOLINTNEXTLINE(readability-identifier-naming): the library's name
namespace CLI {
class App;
}

namespace dbapi::tool {
/// Runs a command whose arguments have been read. Throws `CommandFailure` when it gives up.
using CommandRunner = std::function<ExitCode()>;

/// One command of the program.
struct Command
{
    /// The words that call it: "values", "connection add".
    const char* name;
    const char* summary;
    const char* example;
    /// Declares the arguments; the runner holds what is read into them.
    CommandRunner (*declare)(CLI::App& arguments);
};

/// All commands, in the order in which help lists them.
std::span<const Command> commands();

// One file per command, or few that belong together.

CommandRunner declare_connection_add(CLI::App& arguments);
CommandRunner declare_connection_list(CLI::App& arguments);
CommandRunner declare_connection_test(CLI::App& arguments);
CommandRunner declare_connection_rename(CLI::App& arguments);
CommandRunner declare_connection_remove(CLI::App& arguments);
CommandRunner declare_connection_manage(CLI::App& arguments);
CommandRunner declare_import(CLI::App& arguments);
CommandRunner declare_copy(CLI::App& arguments);
CommandRunner declare_values(CLI::App& arguments);
CommandRunner declare_explain(CLI::App& arguments);
CommandRunner declare_keys(CLI::App& arguments);
CommandRunner declare_ids(CLI::App& arguments);
CommandRunner declare_record(CLI::App& arguments);
CommandRunner declare_setup(CLI::App& arguments);
CommandRunner declare_header(CLI::App& arguments);
CommandRunner declare_tables(CLI::App& arguments);
CommandRunner declare_builtins(CLI::App& arguments);
CommandRunner declare_help(CLI::App& arguments);
CommandRunner declare_completion(CLI::App& arguments);
CommandRunner declare_complete(CLI::App& arguments);
CommandRunner declare_manual(CLI::App& arguments);
} // namespace dbapi::tool
