#include "tools/dbapi/help/completion.h"

#include "dbapi/db_listing.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/vocabulary.h"
#include "dbsuggest/known_keys.h"

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

/// Keywords for the keys and fixed columns of a table, or of all: a name where it means one key.
Words keywords_of(const std::string& connectionName, const std::string& table)
{
    Words keywords;
    for (const auto& [name, forms] : function_keywords(open_known(connectionName), table)) {
        if (forms.size() == 1) {
            keywords.push_back(name);
        } else {
            keywords.insert(keywords.end(), forms.begin(), forms.end());
        }
    }
    for (const auto& [keyname, column] : build_builtin_keywords(false)) {
        if (table.empty() || column.starts_with(table + ".")) {
            keywords.push_back(keyname);
        }
    }
    return keywords;
}

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

Words values_of(const CLI::Option& option, const Place& place)
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
    const auto connection = place.arguments.find("CONNECTION");
    if (connection == place.arguments.end()) {
        return {};
    }
    if (kind == "KEYWORD") {
        return keywords_of(connection->second, resolved_table(place));
    }
    return kind == "COLUMN" ? key_names_of_setups(connection->second) : Words();
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
        return values_of(*place.option, place);
    }
    if (begun.starts_with('-')) {
        return option_names(*place.command);
    }
    Words words = command_words(*place.command);
    if (!words.empty()) {
        return words;
    }
    const CLI::Option* argument = argument_at(*place.command, place.argumentCount);
    return argument == nullptr ? Words() : values_of(*argument, place);
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
    std::erase_if(words, [&begun](const std::string& word) { return !word.starts_with(begun); });
    return words;
}
} // namespace dbapi::tool
