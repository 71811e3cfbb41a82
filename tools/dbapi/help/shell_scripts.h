#pragma once

#include <string>
#include <vector>

namespace dbapi::tool {
/// The shells that completion has a script for.
std::vector<std::string> shell_names();

/// The script that has the shell of that name complete this program's words; empty for an unknown
/// one.
std::string completion_script(const std::string& shell);
} // namespace dbapi::tool
