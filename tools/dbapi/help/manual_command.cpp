#include "tools/dbapi/help/help_declarations.h"
#include "tools/dbapi/output/data_output.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <string>

namespace dbapi::tool {
namespace {
/// A text for troff: nothing in it is a request or an escape.
std::string roff(const std::string& text)
{
    std::string written;
    bool isLineStart = true;
    for (const char letter : text) {
        if (isLineStart && (letter == '.' || letter == '\'')) {
            written += "\\&";
        }
        isLineStart = letter == '\n';
        switch (letter) {
        case '\\':
            written += "\\e";
            break;
        case '-':
            written += "\\-";
            break;
        case '\'':
            written += "\\(aq";
            break;
        case '^':
            written += "\\(ha";
            break;
        case '~':
            written += "\\(ti";
            break;
        case '`':
            written += "\\(ga";
            break;
        default:
            written += letter;
        }
    }
    return written;
}

bool is_for_people(const CLI::App* command)
{
    return !command->get_group().empty();
}

/// "values [OPTIONS] CONNECTION KEYWORD..."
std::string usage(const std::string& name, const CLI::App& command)
{
    std::string text = "\\fB" + roff(name) + "\\fR [\\fIOPTIONS\\fR]";
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            text += " \\fI" + roff(option->get_name()) + "\\fR" +
                    (option->get_expected_max() > 1 ? "..." : "");
        }
    }
    return text;
}

std::string option_entry(const CLI::Option& option)
{
    std::string heading;
    if (option.get_positional()) {
        heading = "\\fI" + roff(option.get_name()) + "\\fR";
    } else {
        for (const std::string& name : option.get_snames()) {
            heading += (heading.empty() ? "" : ", ") + std::string("\\fB\\-") + roff(name) + "\\fR";
        }
        for (const std::string& name : option.get_lnames()) {
            heading +=
                (heading.empty() ? "" : ", ") + std::string("\\fB\\-\\-") + roff(name) + "\\fR";
        }
        const std::string value = option.get_type_name();
        heading += value.empty() ? "" : " \\fI" + roff(value) + "\\fR";
    }
    return ".TP\n" + heading + "\n" + roff(option.get_description()) + "\n";
}

/// The lines of a footer as they are.
std::string lines(const std::string& text)
{
    return text.empty() ? "" : ".PP\n.nf\n" + roff(text) + "\n.fi\n";
}

std::string command_entry(const std::string& name, const CLI::App& command)
{
    std::string text =
        ".SS " + usage(name, command) + "\n" + roff(command.get_description()) + ".\n";
    for (const CLI::Option* option : command.get_options()) {
        if (option != command.get_help_ptr()) {
            text += option_entry(*option);
        }
    }
    return text + lines(command.get_footer());
}

std::string command_entries(const std::string& prefix, const CLI::App& command)
{
    std::string text;
    for (const CLI::App* known : command.get_subcommands(is_for_people)) {
        const std::string name = prefix + known->get_name();
        text += known->get_subcommands(is_for_people).empty() ? command_entry(name, *known)
                                                              : command_entries(name + " ", *known);
    }
    return text;
}

std::string manual_page(const CLI::App& program)
{
    std::string description = program.get_description();
    description.erase(description.find_last_not_of('.') + 1);
    description.front() = static_cast<char>(std::tolower(description.front()));
    std::string text = ".TH DBAPI 1 \"\" \"dbapi " DBAPI_VERSION "\" \"User Commands\"\n.SH NAME\n"
                       "dbapi \\- " +
                       roff(description) +
                       "\n.SH SYNOPSIS\n\\fBdbapi\\fR "
                       "\\fICOMMAND\\fR [\\fIOPTIONS\\fR] [\\fIARGUMENTS\\fR]\n.SH OPTIONS\n";
    for (const CLI::Option* option : program.get_options()) {
        text += option_entry(*option);
    }
    return text + ".SH COMMANDS\n" + command_entries("", program) +
           ".SH EXIT STATUS AND ENVIRONMENT\n" + lines(program.get_footer());
}
} // namespace

CommandRunner declare_manual(CLI::App& arguments)
{
    return [&arguments] {
        write_text(manual_page(*arguments.get_parent()));
        return ExitCode::Done;
    };
}
} // namespace dbapi::tool
