#include "tools/dbapi/command_line.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/nearest_text.h"

#include "tools/dbapi/commands/command_table.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <QtGlobal>

#include <CLI/CLI.hpp>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace dbapi::tool {
namespace {
constexpr const char* kFooter =
    "Exit codes: 0 done, 1 nothing found, 2 wrong usage or query, 3 connection,\n"
    "4 data or schema, 5 file. The stored connections are those of the folder in\n"
    "VANTO_DB_CONNECTIONS_DIRECTORY, else of ~/tarsier/config.";

constexpr const char* kCommands = "Commands";

/// Help without CLI11's remarks on which option needs which.
class HelpText : public CLI::Formatter
{
public:
    HelpText()
    {
        column_width(32);
        label("SUBCOMMAND", "COMMAND");
    }

    [[nodiscard]] std::string make_option_opts(const CLI::Option* option) const override
    {
        const std::string value = option->get_positional() ? "" : option->get_type_name();
        return (value.empty() ? "" : " " + value) + (option->get_expected_max() > 1 ? " ..." : "");
    }
};

std::set<std::string> option_names(const CLI::App& command)
{
    std::set<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.insert("--" + name);
        }
    }
    return names;
}

/// The last words of the commands below a command, each with all its words: "list" stands for
/// "connection list". A word that is a command by itself stands for that.
std::map<std::string, std::string> commands_by_word(const CLI::App& command)
{
    std::map<std::string, std::string> names;
    for (const CLI::App* subcommand : command.get_subcommands(nullptr)) {
        if (!subcommand->get_group().empty()) {
            names[subcommand->get_name()] = subcommand->get_name();
        }
    }
    for (const CLI::App* group : command.get_subcommands(nullptr)) {
        for (const CLI::App* below : group->get_subcommands(nullptr)) {
            names.emplace(below->get_name(), group->get_name() + " " + below->get_name());
        }
    }
    return names;
}

/// The message for an argument that a command does not know.
std::string unknown_argument(const CLI::App& command, const std::string& argument)
{
    if (argument.starts_with('-')) {
        const std::set<std::string> known = option_names(command);
        return "there is no option " + argument + "." +
               suggestion(nearest_texts(argument.substr(0, argument.find('=')), known, 2));
    }
    const std::map<std::string, std::string> known = commands_by_word(command);
    if (known.empty()) {
        return "the argument " + dbapi::quoted(argument) + " is not expected.";
    }
    std::set<std::string> words;
    for (const auto& [word, name] : known) {
        words.insert(word);
    }
    std::vector<std::string> near = nearest_texts(argument, words, 2);
    for (std::string& word : near) {
        word = known.at(word);
    }
    return "there is no command " + dbapi::quoted(argument) + "." + suggestion(near);
}

/// The name of an option in a message of the parser: all before the given words.
std::string named_before(const std::string& message, const std::string& words)
{
    return message.substr(0, message.find(words));
}

/// What is wrong with a value, behind the option that has it; an argument needs no name before it.
std::string
value_fault(const CLI::App& command, const std::string& name, const std::string& message)
{
    const CLI::Option* option = command.get_option_no_throw(name);
    const bool isArgument = option != nullptr && option->get_positional();
    const std::string text = isArgument ? message.substr(name.size() + 2) : message;
    return text + (text.ends_with('.') ? "" : ".");
}

/// What is wrong between two options; empty when the error is another one.
std::string pair_fault(const CLI::ParseError& error)
{
    const std::string message = error.what();
    if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr) {
        const std::string first = named_before(message, " requires ");
        return first + " needs " + message.substr(first.size() + std::string(" requires ").size()) +
               ".";
    }
    if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
        const std::string first = named_before(message, " excludes ");
        return first + " and " + message.substr(first.size() + std::string(" excludes ").size()) +
               " cannot be combined. Leave one out.";
    }
    return {};
}

/// What is wrong with an option that has too few values, or too many.
std::string
count_fault(const CLI::App& command, const std::string& name, const std::string& message)
{
    if (!message.ends_with(" missing")) {
        return name + " is given more than once. Give it once.";
    }
    const CLI::Option* option = command.get_option_no_throw(name);
    return "the option " + name + " takes a value" +
           (option == nullptr ? "." : ": " + name + " " + option->get_type_name() + ".");
}

/// The first argument that a command needs and was not given.
std::string missing_argument(const CLI::App& command, const std::string& message)
{
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_required() && option->count() == 0) {
            return option->get_name() + " is missing: " + option->get_description() + ".";
        }
    }
    return message;
}

/// The message of the parser in the words of this program.
std::string argument_fault(const CLI::App& command, const CLI::ParseError& error)
{
    const std::string message = error.what();
    const std::string name = named_before(message, ":");
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return missing_argument(command, message);
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return count_fault(command, name, message);
    }
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
        // Only flags convert: all other options take texts and look at them themselves.
        const std::string before = "Could not convert: ";
        const std::string flag = named_before(message.substr(before.size()), " = ");
        return flag + " takes no value. Write it alone.";
    }
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) {
        return value_fault(command, name, message);
    }
    const std::string pair = pair_fault(error);
    return pair.empty() ? message : pair;
}

/// The program's arguments, and which command they chose.
class CommandLine
{
    Q_DISABLE_COPY_MOVE(CommandLine)

public:
    CommandLine()
    {
        app_.set_help_flag("-h,--help", "show this help");
        app_.set_version_flag(
            "--version", std::string("dbapi ") + DBAPI_VERSION, "show the version");
        app_.require_subcommand(1);
        app_.formatter(std::make_shared<HelpText>());
        app_.footer(kFooter);
        for (const Command& command : commands()) {
            add(command);
        }
    }

    ~CommandLine() = default;

    ExitCode run(int argumentCount, char** arguments)
    {
        try {
            app_.parse(argumentCount, arguments);
        } catch (const CLI::Success& helpOrVersion) {
            std::ostringstream text;
            app_.exit(helpOrVersion, text);
            write_text(text.str());
            return ExitCode::Done;
        } catch (const CLI::ParseError& error) {
            throw CommandFailure(ExitCode::WrongUsage, usageText(error));
        }
        return chosen_();
    }

private:
    void add(const Command& command)
    {
        const std::string name = command.name;
        const std::size_t blank = name.find(' ');
        CLI::App* parent = blank == std::string::npos ? &app_ : group(name.substr(0, blank));
        const std::string word = name.substr(blank == std::string::npos ? 0 : blank + 1);
        CLI::App* arguments = parent->add_subcommand(word, command.summary)->group(kCommands);
        arguments->footer(std::string("Example: ") + command.example);
        const CommandRunner runner = command.declare(*arguments);
        arguments->final_callback([this, runner] { chosen_ = runner; });
    }

    CLI::App* group(const std::string& name)
    {
        const auto isNamed = [&name](const CLI::App* app) {
            return app->get_name() == name;
        };
        const std::vector<CLI::App*> known = app_.get_subcommands(isNamed);
        if (!known.empty()) {
            return known.front();
        }
        CLI::App* added =
            app_.add_subcommand(
                    name, "Store connections to databases; list, test, manage and remove them")
                ->group(kCommands);
        added->require_subcommand(1);
        return added;
    }

    [[nodiscard]] std::string usageText(const CLI::ParseError& error) const
    {
        // The command as far as the arguments named one.
        const CLI::App* command = &app_;
        std::string name = app_.get_name();
        while (!command->get_subcommands().empty()) {
            command = command->get_subcommands().front();
            name += " " + command->get_name();
        }
        std::vector<std::string> unknown = app_.remaining(true);
        std::erase(unknown, "--");
        std::string text = argument_fault(*command, error);
        if (!unknown.empty()) {
            text = unknown_argument(*command, unknown.front());
        } else if (command->get_require_subcommand_min() > 0) {
            text = "a command is missing: " + name + " COMMAND.";
        }
        return text + "\nSee: " + name + " --help";
    }

    CLI::App app_{"Reads measurement databases by keywords and query strings.", "dbapi"};
    CommandRunner chosen_;
};

int report(ExitCode code, const std::string& text)
{
    tell_error(dbif::trimmed(text));
    return static_cast<int>(code);
}
} // namespace

int run_command_line(int argumentCount, char** arguments)
{
    try {
        CommandLine line;
        return static_cast<int>(line.run(argumentCount, arguments));
    } catch (const CommandFailure& failure) {
        return report(failure.code(), failure.what());
    } catch (const ConnectionFailure& failure) {
        const bool isData = failure.reason() == ConnectionFailure::Reason::NoDatabase;
        return report(isData ? ExitCode::Data : ExitCode::Connection, failure.what());
    } catch (DBIF_Exception& exception) {
        const bool isConnection = exception.error().type() == QSqlError::ConnectionError;
        return report(
            isConnection ? ExitCode::Connection : ExitCode::Data,
            "the database reports an error. " + convert_DBIF_Exception_to_string(&exception).str());
    } catch (const std::bad_alloc&) {
        return report(ExitCode::Data, "there is not enough memory for that.");
    } catch (const std::exception& exception) {
        return report(ExitCode::Data, exception.what());
    }
}
} // namespace dbapi::tool
