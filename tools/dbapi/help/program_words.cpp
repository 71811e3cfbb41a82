#include "tools/dbapi/help/program_words.h"

#include <CLI/CLI.hpp>

namespace dbapi::tool {
const CLI::App& program_of(const CLI::App& command)
{
    const CLI::App* program = &command;
    while (program->get_parent() != nullptr) {
        program = program->get_parent();
    }
    return *program;
}

std::vector<std::string> command_words(const CLI::App& command)
{
    std::vector<std::string> words;
    for (const CLI::App* known : command.get_subcommands(nullptr)) {
        if (!known->get_group().empty()) {
            words.push_back(known->get_name());
        }
    }
    return words;
}

const CLI::App* find_command(const CLI::App& command, const std::string& word)
{
    for (const CLI::App* known : command.get_subcommands(nullptr)) {
        if (known->get_name() == word) {
            return known;
        }
    }
    return nullptr;
}
} // namespace dbapi::tool
