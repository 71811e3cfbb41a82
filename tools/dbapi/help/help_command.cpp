#include "dbapi/words/text_rules.h"
#include "dbsuggest/nearest_text.h"

#include "tools/dbapi/help/help_declarations.h"
#include "tools/dbapi/help/program_words.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace dbapi::tool {
namespace {
ExitCode show_help(const CLI::App& program, const std::vector<std::string>& words)
{
    const CLI::App* command = &program;
    std::string name = program.get_name();
    for (const std::string& word : words) {
        const CLI::App* next = find_command(*command, word);
        if (next == nullptr) {
            const std::vector<std::string> known = command_words(*command);
            throw CommandFailure(
                ExitCode::WrongUsage,
                "there is no command " + dbapi::quoted(word) + "." +
                    suggestion(nearest_texts(word, {known.begin(), known.end()}, 2)) +
                    "\nSee: " + name + " --help");
        }
        command = next;
        name += " " + word;
    }
    write_text(command->get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal));
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_help(CLI::App& arguments)
{
    const auto words = std::make_shared<std::vector<std::string>>();
    arguments.add_option("COMMAND", *words, "the words of a command; without one, all of them");
    return [words, &arguments] {
        return show_help(program_of(arguments), *words);
    };
}
} // namespace dbapi::tool
