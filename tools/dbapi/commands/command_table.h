#pragma once

#include "tools/dbapi/arguments/command.h"

#include <span>

namespace dbapi::tool {
/// All commands, in the order in which help lists them.
std::span<const Command> commands();
} // namespace dbapi::tool
