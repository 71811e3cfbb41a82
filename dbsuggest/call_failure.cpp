#include "dbsuggest/call_failure.h"

#include "dbif/host/host_string.h"
#include "dbsuggest/command_failure.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/known_keys.h"
#include "dbsuggest/query_fault.h"
#include "dbsuggest/stored_names.h"

#include <optional>

namespace dbapi::tool {
namespace {
std::optional<QueryFault>
find_fault(KnownKeys& keys, const DataRequest& request, const std::string& errors)
{
    std::optional<QueryFault> fault = find_query_fault(keys, request.query, errors);
    for (const std::string& keyword : request.keywords) {
        if (!fault.has_value()) {
            fault = find_keyword_fault(keys, keyword);
        }
    }
    return fault;
}

/// For calls that fail without a word.
std::string default_text(KnownKeys& keys, const DataRequest& request)
{
    std::vector<std::string> described;
    for (const std::string& keyword : request.keywords) {
        described.push_back(keys.describe(keyword));
    }
    return "the database has no values of " + listed(described) + ". Check the keyword.";
}
} // namespace

void throw_call_failure(const DataRequest& request, const std::string& errors)
{
    // First whatever keeps the connection from opening: the rest follows from it.
    KnownKeys keys(open_stored(request.connection));
    const std::optional<QueryFault> fault = find_fault(keys, request, errors);
    std::string text = dbif::trimmed(errors);
    if (text.empty()) {
        text = default_text(keys, request);
    }
    if (fault.has_value()) {
        text = dbif::trimmed(text + "\n" + fault_lines(*fault));
    }
    throw CommandFailure(fault.has_value() ? ExitCode::WrongUsage : ExitCode::Data, text);
}
} // namespace dbapi::tool
