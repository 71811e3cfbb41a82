#pragma once

#include <functional>
#include <string>
#include <vector>

// NOLINTNEXTLINE(readability-identifier-naming): the library's name
namespace CLI {
class App;
class Option;
} // namespace CLI

namespace dbapi::tool {
// Arguments and options that several commands have. What they are stored in outlives the app.

/// The argument CONNECTION, the name of a stored connection; whether there is one is not checked.
void add_connection_argument(CLI::App& arguments, std::string* connection);

/// The argument TABLE, a record table by its name or one of its spellings ("DEV"); what is none is
/// refused. Receives the table's name.
void add_table_argument(CLI::App& arguments, std::string* table);

/// The argument ID, from 1 up; what is none is refused.
void add_id_argument(CLI::App& arguments, int* id, const std::string& description);

/// The option -q or --query.
void add_query_option(
    CLI::App& arguments,
    std::string* query,
    const std::string& description = "which records, like 'W=5u;L<=1u'");

/// An option that takes one of the choices and hands its place to `choose`. Its type name lists the
/// choices ("text|json"), for help and for completion.
CLI::Option* add_choice_option(
    CLI::App& arguments,
    const std::string& name,
    const std::vector<std::string>& choices,
    const std::function<void(std::size_t)>& choose,
    const std::string& description);

/// The option --format of that kind.
CLI::Option* add_format_option(
    CLI::App& arguments,
    const std::vector<std::string>& choices,
    const std::function<void(std::size_t)>& choose,
    const std::string& description);

/// An option that takes a whole number from 0 up, N, and hands it to `take`; what is none is
/// refused.
CLI::Option* add_number_option(
    CLI::App& arguments,
    const std::string& name,
    const std::function<void(std::size_t)>& take,
    const std::string& description);

/// The choices that an option's type name lists; none when it is no list.
std::vector<std::string> listed_choices(const CLI::Option& option);
} // namespace dbapi::tool
