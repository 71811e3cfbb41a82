#include "dbapi/words/text_rules.h"
#include "dbsuggest/display_text.h"

#include "tools/dbapi/help/completion.h"
#include "tools/dbapi/help/help_declarations.h"
#include "tools/dbapi/help/program_words.h"
#include "tools/dbapi/help/shell_scripts.h"
#include "tools/dbapi/help/shell_words.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>

namespace dbapi::tool {
namespace {
void print_completions(const CLI::App& program, const std::vector<std::string>& typed)
{
    std::vector<std::string> words;
    char quote = 0;
    for (const std::string& word : typed) {
        const TypedWord read = read_typed_word(word);
        words.push_back(read.text);
        quote = read.quote;
    }
    for (const std::string& word : completions(program, words)) {
        std::puts(written_word(word, quote).c_str());
    }
}
} // namespace

CommandRunner declare_completion(CLI::App& arguments)
{
    const auto shell = std::make_shared<std::string>();
    arguments.add_option("SHELL", *shell, listed(shell_names(), " or "))
        ->required()
        ->check([](const std::string& given) {
            return completion_script(given).empty()
                       ? "there is no script for " + dbapi::quoted(given) + "; choose " +
                             listed(shell_names(), " or ")
                       : std::string();
        });
    return [shell] {
        write_text(completion_script(*shell));
        return ExitCode::Done;
    };
}

CommandRunner declare_complete(CLI::App& arguments)
{
    // Not for people.
    arguments.group("");
    const auto typed = std::make_shared<std::vector<std::string>>();
    arguments.add_option("WORD", *typed, "the words typed so far");
    return [typed, &arguments] {
        try {
            print_completions(program_of(arguments), *typed);
        } catch (const std::exception&) {
            // Somebody is typing: a database that does not open is no matter to bother them with.
            return ExitCode::NothingFound;
        }
        return ExitCode::Done;
    };
}
} // namespace dbapi::tool
