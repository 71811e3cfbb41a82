#include "dbexplain/key_explanation.h"

#include "dbapi/key/key_resolution.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

#include <algorithm>

namespace dbapi {
namespace {
std::string count_text(std::size_t count, const std::string& name)
{
    return std::to_string(count) + " keys named " + name;
}

std::string rule_text(const Resolution& found, bool isUnderQuery)
{
    const std::string name(found.column().name());
    switch (found.rule) {
    case ResolutionRule::Builtin:
        return "builtin keyname";
    case ResolutionRule::StoredBuiltin:
        return "builtin keyname of a stored key";
    case ResolutionRule::FixedColumn:
        return "named as a fixed column";
    case ResolutionRule::OnlyName:
        return "the only key of its name";
    case ResolutionRule::Definition:
        return "the one of " + count_text(found.named, name) + " that agrees with the keyword";
    case ResolutionRule::Catalogue:
        break;
    }
    return "of the " + std::to_string(found.agreeing) +
           " that agree with the keyword, the one that " +
           (isUnderQuery ? "the selected records have" : "records have");
}

std::string datatype_of(const dbif::TableColumn& column)
{
    const bool isId = !column.isKey() && column.fixed().kind == dbif::FixedKind::Id;
    return isId ? kWholeNumber
                : convert_to_full_datatype_name(dbif::to_utf8(dbif::datatype_name(column.kind())));
}
} // namespace

std::vector<KeyExplanation> explain_keys(
    DBIF_Connection& connection,
    const std::vector<std::string>& asked,
    const std::set<std::string>& compared,
    const DBIF_QueryCondition& condition,
    bool latestOnly)
{
    std::vector<KeyExplanation> keys;
    const auto add = [&](const std::string& keyword, bool isAsked) {
        const bool isKnown =
            std::any_of(keys.begin(), keys.end(), [&keyword](const KeyExplanation& key) {
                return key.keyword == keyword;
            });
        if (isKnown) {
            return;
        }
        const Resolution found =
            resolve_keyword(connection, keyword, isAsked ? &condition : nullptr, latestOnly);
        if (!found.isFound()) {
            return;
        }
        const dbif::TableColumn& column = found.column();
        const std::string category =
            column.isKey() ? convert_to_full_category_name(column.key().category) : kFixedColumn;
        const std::string datatype = datatype_of(column);
        const std::string rule = rule_text(found, isAsked);
        keys.push_back(
            {keyword, isAsked, compared.contains(keyword), column, category, datatype, rule});
    };
    for (const std::string& keyword : asked) {
        add(keyword, true);
    }
    for (const std::string& keyword : compared) {
        add(keyword, false);
    }
    return keys;
}
} // namespace dbapi
