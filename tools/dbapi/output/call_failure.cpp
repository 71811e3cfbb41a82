#include "tools/dbapi/output/call_failure.h"

#include "dbapi/db_fault.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/fault_advice.h"
#include "dbsuggest/fault_lines.h"
#include "dbsuggest/known_keys.h"

#include "tools/dbapi/arguments/command_failure.h"
#include "tools/dbapi/output/stored_names.h"

namespace dbapi::tool {
namespace {
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

void throw_call_failure(const DataRequest& request, const Fault& fault)
{
    // First whatever keeps the connection from opening: the rest follows from it.
    KnownKeys keys(open_known(request.connection));
    std::string text = dbif::trimmed(fault.text);
    if (text.empty()) {
        text = default_text(keys, request);
    }
    const bool hasPlace = fault.where != Fault::Where::Nowhere;
    if (hasPlace) {
        text = dbif::trimmed(text + "\n" + fault_lines(fault, advice_for(fault, keys)));
    }
    throw CommandFailure(hasPlace ? ExitCode::WrongUsage : ExitCode::Data, text);
}

void throw_call_failure(const DataRequest& request, const std::string& errors)
{
    Fault fault;
    if (!db_get_last_fault(&fault)) {
        fault.text = errors;
    }
    throw_call_failure(request, fault);
}
} // namespace dbapi::tool
