#include "dbapi/words/query_command.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"

namespace dbapi {
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

/// The message for the command's place at `command` with the colon at `colon`; empty when
/// nothing is.
std::string find_complaint(std::string_view query, std::size_t command, std::size_t colon)
{
    if (command != 0) {
        return kNotAtBeginning;
    }
    if (colon == std::string_view::npos) {
        return kNoColon;
    }
    const std::string_view between = query.substr(kCommand.size(), colon - kCommand.size());
    return trimmed_view(between).empty() ? std::string() : std::string(kOtherCommands) + kNoColon;
}
} // namespace

CommandedQuery split_query_command(const std::string& query)
{
    const std::string_view trimmed = trimmed_view(query);
    const std::size_t command = dbif::upper_case(trimmed).find(kCommand);
    if (command == std::string::npos) {
        return {false, trimmed};
    }
    const std::size_t colon = trimmed.find(':', kCommand.size());
    const std::string complaint = find_complaint(trimmed, command, colon);
    if (!complaint.empty()) {
        const auto position = static_cast<std::size_t>(trimmed.data() - query.data()) + command;
        throw FaultError(
            {Fault::Kind::MisplacedCommand,
             "Database Error: The query string " + quoted(trimmed) +
                 " had an improperly placed \"ALLDATA:\" command string.\n" + complaint,
             Fault::Where::Query,
             query,
             position,
             kCommand.size(),
             {}});
    }
    return {true, trimmed_view(trimmed.substr(colon + 1))};
}
} // namespace dbapi
