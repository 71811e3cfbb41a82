#include "tools/dbapi/arguments/request_arguments.h"

#include "dbapi/db_listing.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/nearest_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <set>

namespace dbapi::tool {
namespace {
std::optional<std::size_t> read_whole(const std::string& text)
{
    std::size_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

std::string id_error(const std::string& given)
{
    const std::size_t id = read_whole(given).value_or(0);
    return id > 0 && id <= static_cast<std::size_t>(std::numeric_limits<int>::max())
               ? std::string()
               : dbapi::quoted(given) + " is no id; dbapi ids lists those there are";
}
} // namespace

void add_connection_argument(CLI::App& arguments, std::string* connection)
{
    arguments
        .add_option("CONNECTION", *connection, "a stored connection, or the path of an SQLite file")
        ->required();
}

void add_table_argument(CLI::App& arguments, std::string* table)
{
    arguments.add_option("TABLE", *table, "a record table: device, DEV, setup, ...")
        ->required()
        ->transform([](const std::string& given) {
            std::string name;
            std::string attributes;
            if (!dbapi_find_tablename_in_table_vocabulary(given, &name, &attributes)) {
                std::set<std::string> names;
                db_get_tablenames(&names);
                throw CLI::ValidationError(
                    "there is no table " + dbapi::quoted(given) + "." +
                    suggestion(nearest_texts(given, names, 2)) +
                    " dbapi tables lists those there are");
            }
            return name;
        });
}

void add_id_argument(CLI::App& arguments, int* id, const std::string& description)
{
    arguments.add_option("ID", *id, description)->required()->check(id_error);
}

void add_query_option(CLI::App& arguments, std::string* query, const std::string& description)
{
    arguments.add_option("-q,--query", *query, description)->type_name("QUERY");
}

void add_format_option(
    CLI::App& arguments,
    const std::vector<std::string>& choices,
    const std::function<void(std::size_t)>& choose,
    const std::string& description)
{
    const auto placeOf = [choices](const std::string& name) {
        const auto found = std::find(choices.begin(), choices.end(), name);
        return static_cast<std::size_t>(std::distance(choices.begin(), found));
    };
    std::string typeName;
    for (const std::string& choice : choices) {
        typeName += (typeName.empty() ? "" : "|") + choice;
    }
    arguments
        .add_option_function<std::string>(
            "--format", [placeOf, choose](const std::string& name) { choose(placeOf(name)); },
            description)
        ->type_name(typeName)
        ->check([placeOf, choices](const std::string& name) {
            return placeOf(name) < choices.size()
                       ? std::string()
                       : dbapi::quoted(name) + " is no format; choose " + listed(choices, " or ");
        });
}

CLI::Option* add_number_option(
    CLI::App& arguments,
    const std::string& name,
    const std::function<void(std::size_t)>& take,
    const std::string& description)
{
    return arguments
        .add_option_function<std::string>(
            name, [take](const std::string& given) { take(*read_whole(given)); }, description)
        ->type_name("N")
        ->check([](const std::string& given) {
            return read_whole(given).has_value()
                       ? std::string()
                       : dbapi::quoted(given) + " is no whole number from 0 up";
        });
}

std::vector<std::string> listed_choices(const CLI::Option& option)
{
    const std::string names = option.get_type_name();
    return names.find('|') == std::string::npos ? std::vector<std::string>()
                                                : CLI::detail::split(names, '|');
}
} // namespace dbapi::tool
