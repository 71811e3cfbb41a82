#include "dbapi/wall/alldata_command.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

#include <string_view>

namespace {
constexpr std::string_view kCommand = "ALLDATA";

constexpr const char* kNotAtBeginning =
    "The \"ALLDATA:\" command string can only be placed at the beginning of the query string.\n";
constexpr const char* kNoColon =
    "The \"ALLDATA\" command string can only be placed at the beginning of the query string\n"
    "and should be followed by a colon ':', i.e. \"ALLDATA:\". \n";
constexpr const char* kOtherCommands =
    "Other unknown and invalid query condition commands were found after the \"ALLDATA\" command and before the "
    "preceding colon.\n";

/// What is wrong with the command's place at `command` with the colon at `colon`; empty when
/// nothing is.
std::string find_fault(const std::string& query, std::size_t command, std::size_t colon)
{
    if (command != 0) {
        return kNotAtBeginning;
    }
    if (colon == std::string::npos) {
        return kNoColon;
    }
    const std::string_view between =
        std::string_view(query).substr(kCommand.size(), colon - kCommand.size());
    return dbapi::trimmed_view(between).empty() ? std::string()
                                                : std::string(kOtherCommands) + kNoColon;
}
} // namespace

bool dbapi_found_and_removed_alldata_condition_from_query_str(
    const std::string& query,
    std::string* rest,
    std::vector<std::string>* commands,
    std::string* errors)
{
    const std::string trimmed = dbif::trimmed(query);
    rest->clear();
    if (commands != nullptr) {
        commands->clear();
    }
    dbif::clear_error(errors);
    const std::size_t command = dbif::upper_case(trimmed).find(kCommand);
    if (command == std::string::npos) {
        return false;
    }
    const std::size_t colon = trimmed.find(':', kCommand.size());
    const std::string fault = find_fault(trimmed, command, colon);
    if (!fault.empty()) {
        dbif::deliver_error(
            errors, "Database Error: The query string " + dbapi::quoted(trimmed) +
                        " had an improperly placed \"ALLDATA:\" command string.\n" + fault);
        return false;
    }
    *rest = dbif::trimmed(std::string_view(trimmed).substr(colon + 1));
    if (commands != nullptr) {
        commands->emplace_back(kCommand);
    }
    return true;
}
