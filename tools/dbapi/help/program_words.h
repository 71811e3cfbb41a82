#pragma once

#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace dbapi::tool {
/// The whole program that a command belongs to.
const CLI::App& program_of(const CLI::App& command);

/// The words that may follow a command to choose one below it, without those that are not for
/// people.
std::vector<std::string> command_words(const CLI::App& command);

/// The command that the word chooses below another one; null when there is none.
const CLI::App* find_command(const CLI::App& command, const std::string& word);
} // namespace dbapi::tool
