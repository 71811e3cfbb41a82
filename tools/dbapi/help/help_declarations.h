#pragma once

#include "tools/dbapi/arguments/command.h"

namespace dbapi::tool {
// The commands that tell what the declared commands and arguments are.

CommandRunner declare_help(CLI::App& arguments);
CommandRunner declare_completion(CLI::App& arguments);
CommandRunner declare_complete(CLI::App& arguments);
CommandRunner declare_manual(CLI::App& arguments);
} // namespace dbapi::tool
