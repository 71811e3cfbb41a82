#include "tools/dbapi/help/completion.h"

#include "dbapi/db_listing.h"
#include "dbapi/words/vocabulary.h"
#include "dbsuggest/known_keys.h"
#include "dbsuggest/query_completion.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/help/program_words.h"
#include "tools/dbapi/help/shell_scripts.h"
#include "tools/dbapi/output/stored_names.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <set>

namespace dbapi::tool {
namespace {
/// Where the words that were typed lead to.
struct Place
{
    const CLI::App* command;
    /// The option whose value comes next; null: none.
    const CLI::Option* option = nullptr;
    /// The arguments before it, by their names in help.
    std::map<std::string, std::string> arguments = {};
    std::size_t argumentCount = 0;
};

std::vector<const CLI::Option*> arguments_of(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

/// The argument at a place; the last one may be given several times.
const CLI::Option* argument_at(const CLI::App& command, std::size_t place)
{
    const std::vector<const CLI::Option*> arguments = arguments_of(command);
    if (place < arguments.size()) {
        return arguments[place];
    }
    const bool repeats = !arguments.empty() && arguments.back()->get_expected_max() > 1;
    return repeats ? arguments.back() : nullptr;
}

const CLI::Option* find_option(const CLI::App& command, const std::string& word)
{
    const std::vector<const CLI::Option*> options = command.get_options();
    const auto found =
        std::find_if(options.begin(), options.end(), [&word](const CLI::Option* option) {
            return !option->get_positional() && option->check_name(word);
        });
    return found == options.end() ? nullptr : *found;
}

bool takes_value(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

void step(const std::string& word, Place* place)
{
    if (place->option != nullptr) {
        place->option = nullptr;
        return;
    }
    if (word.starts_with('-')) {
        const CLI::Option* option = find_option(*place->command, word);
        place->option = option != nullptr && takes_value(*option) ? option : nullptr;
        return;
    }
    if (const CLI::App* command = find_command(*place->command, word)) {
        place->command = command;
        return;
    }
    if (const CLI::Option* argument = argument_at(*place->command, place->argumentCount++)) {
        place->arguments[argument->get_name()] = word;
    }
}

using Words = std::vector<std::string>;

Words key_names_of_setups(const std::string& connectionName)
{
    Words names;
    for (const auto& [name, forms] : function_keywords(open_known(connectionName), "setup")) {
        names.push_back(name);
    }
    return names;
}

Words table_names()
{
    std::set<std::string> names;
    db_get_tablenames(&names);
    return {names.begin(), names.end()};
}

std::string resolved_table(const Place& place)
{
    const auto given = place.arguments.find("TABLE");
    std::string name;
    std::string attributes;
    if (given != place.arguments.end()) {
        dbapi_find_tablename_in_table_vocabulary(given->second, &name, &attributes);
    }
    return name;
}

/// What the database of the connection that was typed has for a place of that kind.
Words words_of_database(const std::string& kind, const Place& place, const std::string& begun)
{
    auto connection = place.arguments.find("CONNECTION");
    if (connection == place.arguments.end()) {
        connection = place.arguments.find("FROM");
    }
    if (connection == place.arguments.end()) {
        return {};
    }
    if (kind == "KEYWORD") {
        return known_keywords(open_known(connection->second), resolved_table(place));
    }
    if (kind == "QUERY") {
        return query_completions(open_known(connection->second), begun);
    }
    return kind == "COLUMN" ? key_names_of_setups(connection->second) : Words();
}

/// The values of an option or argument; `begun` is what was typed of it.
Words values_of(const CLI::Option& option, const Place& place, const std::string& begun)
{
    const std::string kind = option.get_positional() ? option.get_name() : option.get_type_name();
    if (Words choices = listed_choices(option); !choices.empty()) {
        return choices;
    }
    if (kind == "COMMAND") {
        const CLI::App* command = &program_of(*place.command);
        const auto first = place.arguments.find("COMMAND");
        command = first == place.arguments.end() ? command : find_command(*command, first->second);
        return command == nullptr ? Words() : command_words(*command);
    }
    if (kind == "SHELL") {
        return shell_names();
    }
    const bool isNewName = place.command->get_name() == "add";
    if (kind == "CONNECTION" || kind == "FROM" || kind == "TO" || (kind == "NAME" && !isNewName)) {
        const std::set<std::string> names = stored_names();
        return {names.begin(), names.end()};
    }
    if (kind == "TABLE") {
        return table_names();
    }
    return words_of_database(kind, place, begun);
}

Words option_names(const CLI::App& command)
{
    Words names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

Words candidates(const Place& place, const std::string& begun)
{
    if (place.option != nullptr) {
        return values_of(*place.option, place, begun);
    }
    if (begun.starts_with('-')) {
        return option_names(*place.command);
    }
    Words words = command_words(*place.command);
    if (!words.empty()) {
        return words;
    }
    const CLI::Option* argument = argument_at(*place.command, place.argumentCount);
    return argument == nullptr ? Words() : values_of(*argument, place, begun);
}
} // namespace

std::vector<std::string> completions(const CLI::App& program, const Words& typed)
{
    Place place{&program};
    for (std::size_t i = 0; i + 1 < typed.size(); ++i) {
        step(typed[i], &place);
    }
    const std::string begun = typed.empty() ? std::string() : typed.back();
    Words words = candidates(place, begun);
    const bool isQuery = place.option != nullptr && place.option->get_type_name() == "QUERY";
    std::erase_if(words, [&](const std::string& word) {
        // A name that several keys have goes on as "Key(name, ...".
        return !isQuery && !word.starts_with(begun);
    });
    return words;
}
} // namespace dbapi::tool
