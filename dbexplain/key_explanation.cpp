#include "dbexplain/key_explanation.h"

#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/vocabulary.h"

#include <algorithm>

namespace dbapi::tool {
namespace {
std::string count_text(std::size_t count, const std::string& name)
{
    return std::to_string(count) + " keys named " + name;
}

std::string rule_text(const RuledKey& found, bool isUnderQuery)
{
    const std::string& name = found.key.keyname;
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

std::string fixed_datatype(const ResolvedKey& key)
{
    const dbif::TableFacts* table = dbif::find_table(key.tablename);
    const dbif::FixedColumnFacts* column =
        table == nullptr ? nullptr : dbif::find_fixed_column(*table, key.keyname);
    if (column == nullptr) {
        return {};
    }
    switch (column->kind) {
    case dbif::FixedKind::Id:
        return kWholeNumber;
    case dbif::FixedKind::Number:
        return convert_to_full_datatype_name("DOUBLE");
    case dbif::FixedKind::Text:
        break;
    }
    return convert_to_full_datatype_name("TEXT");
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
        KeyExplanation key{keyword, isAsked, compared.contains(keyword), {}, {}, {}, {}};
        std::string ignored;
        if (isKnown || !resolve_keyword_with_rule(
                           connection, keyword, isAsked ? &condition : nullptr, latestOnly,
                           &key.found, &ignored)) {
            return;
        }
        dbapi_extract_category_datatype_attributes(
            key.found.key.attributes, &key.category, &key.datatype);
        key.rule = rule_text(key.found, isAsked);
        if (dbapi_is_category_fixed(key.category)) {
            key.category = kFixedColumn;
            key.datatype = fixed_datatype(key.found.key);
        } else {
            key.category = convert_to_full_category_name(key.category);
            key.datatype = convert_to_full_datatype_name(key.datatype);
        }
        keys.push_back(std::move(key));
    };
    for (const std::string& keyword : asked) {
        add(keyword, true);
    }
    for (const std::string& keyword : compared) {
        add(keyword, false);
    }
    return keys;
}
} // namespace dbapi::tool
