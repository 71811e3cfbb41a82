#pragma once

#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace dbapi::tool {
/// The words that may stand in the place of the last one of a command line (without the program's
/// name): commands, options, formats, stored connections, tables, and keys
/// of the connection and table that were typed. As texts, without quotes; none where a file is
/// wanted, or anything.
std::vector<std::string>
completions(const CLI::App& program, const std::vector<std::string>& typed);
} // namespace dbapi::tool
