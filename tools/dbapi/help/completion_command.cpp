#include "tools/dbapi/help/completion.h"
#include "tools/dbapi/help/help_declarations.h"
#include "tools/dbapi/help/shell_words.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>

namespace dbapi::tool {
namespace {
/// What can be typed is asked of the program itself, so the script never lags behind it.
constexpr const char* kBashScript = R"(# Completion of the command dbapi for bash.
# For this shell alone: source <(dbapi completion bash)
_dbapi() {
    local IFS=$'\n'
    COMPREPLY=($("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null))
}
complete -o bashdefault -o default -F _dbapi dbapi
)";

const CLI::App& program_of(const CLI::App& command)
{
    const CLI::App* program = &command;
    while (program->get_parent() != nullptr) {
        program = program->get_parent();
    }
    return *program;
}

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
    arguments.add_option("SHELL", "bash")
        ->required()
        ->check(CLI::IsMember({"bash"}).description(""));
    return [] {
        write_text(kBashScript);
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
