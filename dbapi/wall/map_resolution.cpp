#include "dbapi/wall/map_resolution.h"

#include "dbapi/query/query_condition.h"
#include "dbapi/wall/column_search.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"

namespace dbapi {
namespace {
using Map = std::map<std::string, std::set<std::string>>;

KeyCandidate candidate_of(KeywordParts parts)
{
    KeyAttributes attributes = split_attributes(parts.attributes);
    return {std::move(parts.keyname),       std::move(parts.tablename),
            std::move(parts.attributes),    std::move(attributes.category),
            std::move(attributes.datatype), std::nullopt};
}

Resolution malformed(const Fault& fault)
{
    Resolution resolution;
    resolution.outcome = Resolution::Outcome::Malformed;
    resolution.fault = fault;
    return resolution;
}
} // namespace

Resolution resolve_by_map(const std::string& keyword, const Map& map)
{
    const std::variant<WantedKey, Fault> wanted = wanted_key(keyword);
    if (const Fault* fault = std::get_if<Fault>(&wanted)) {
        return malformed(*fault);
    }
    const auto& key = std::get<WantedKey>(wanted);
    const auto entry = map.find(normalised(key.name));
    std::vector<KeyCandidate> candidates;
    std::optional<Fault> broken;
    if (entry != map.end()) {
        for (const std::string& text : entry->second) {
            SplitKeyword split = split_keyword(text);
            if (split.fault.has_value()) {
                broken = std::move(split.fault);
            } else {
                candidates.push_back(candidate_of(std::move(split.parts)));
            }
        }
        if (entry->second.size() == 1 && broken.has_value()) {
            return malformed(*broken);
        }
    }
    return choose_key(keyword, key, candidates);
}

Resolutions resolve_terms_by_map(DBIF_Connection& connection, const QueryNode& tree, const Map& map)
{
    Resolutions resolutions;
    for (const std::string& keyword : keywords_of(tree)) {
        Resolution resolution = resolve_by_map(keyword, map);
        if (resolution.isUnique()) {
            KeyCandidate& key = resolution.candidates.front();
            key.column = find_column(connection, key.table, key.name, key.category, key.datatype);
        }
        resolutions.emplace(keyword, std::move(resolution));
    }
    return resolutions;
}
} // namespace dbapi
