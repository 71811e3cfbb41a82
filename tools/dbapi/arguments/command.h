#pragma once

#include "tools/dbapi/arguments/command_failure.h"

#include <functional>

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
} // namespace dbapi::tool
