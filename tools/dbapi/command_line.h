#pragma once

namespace dbapi::tool {
/// Runs the command that the arguments of the program name, and returns the program's exit code.
/// Every error becomes a message; nothing is thrown.
int run_command_line(int argumentCount, char** arguments);
} // namespace dbapi::tool
