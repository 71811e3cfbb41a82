#include "dbsuggest/fault_advice.h"

#include "dbif/host/host_string.h"

namespace dbapi {
namespace {
/// "NOT {W=5u}" and "NOT W=5u": the keyword of a negated term begins with the T of NOT.
bool is_negated(const Fault& fault, const std::string& keyword)
{
    return fault.position >= 2 && fault.source.compare(fault.position - 2, 3, "NOT") == 0 &&
           (keyword.starts_with("T ") || keyword.starts_with("T{"));
}
} // namespace

std::vector<std::string> suggestions_for(const Fault& fault, const KnownKeys& keys)
{
    if (fault.kind == Fault::Kind::AmbiguousKey) {
        return fault.candidates;
    }
    if (fault.kind != Fault::Kind::UnknownKey) {
        return {};
    }
    const std::string keyword(fault.piece());
    if (is_negated(fault, keyword)) {
        std::string name = keyword.substr(1);
        std::erase(name, '{');
        return {"NOT KEY(" + dbif::trimmed(name) + ")"};
    }
    return keys.near(keyword);
}
} // namespace dbapi
