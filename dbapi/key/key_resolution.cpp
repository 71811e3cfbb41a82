#include "dbapi/key/key_resolution.h"

#include "dbapi/key/key_catalogue.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

#include <algorithm>

namespace dbapi {
namespace {
using Outcome = Resolution::Outcome;

/// The keywords of one call, by the text that the caller wrote.
using WantedKeys = std::map<std::string, WantedKey>;

/// Keys that may be meant, by name.
using KeysByName = std::map<std::string, std::vector<KeyCandidate>>;

/// The fixed columns that the keywords name. Each is a candidate for all of them.
KeysByName fixed_columns(const WantedKeys& wanted)
{
    KeysByName keys;
    for (const auto& [keyword, key] : wanted) {
        if (key.isFixed() && !key.table.empty()) {
            keys[key.name].push_back(fixed_candidate(key));
        }
    }
    return keys;
}

/// Adds every stored key of a wanted name, whether a record has it or not.
void add_definitions(DBIF_Connection& connection, const WantedKeys& wanted, KeysByName* keys)
{
    for (const auto& [keyword, key] : wanted) {
        if (!key.isFixed()) {
            (*keys)[key.name];
        }
    }
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        if (dbif::table_info(table).keys == dbif::KeyKind::None) {
            continue;
        }
        for (const dbif::KeyDefinition& definition :
             dbif::ColumnStore::of(connection).all(connection, table)) {
            const auto found = keys->find(definition.name);
            if (found != keys->end()) {
                found->second.push_back(candidate_of(table, definition));
            }
        }
    }
}

Fault keyword_fault(Fault::Kind kind, const std::string& keyword, std::string text)
{
    return {kind, std::move(text), Fault::Where::Keyword, keyword, 0, keyword.size(), {}};
}

ResolutionRule rule_of(const WantedKey& wanted, std::size_t named)
{
    switch (wanted.form) {
    case WantedKey::Form::Builtin:
        return ResolutionRule::Builtin;
    case WantedKey::Form::StoredBuiltin:
        return ResolutionRule::StoredBuiltin;
    case WantedKey::Form::FixedColumn:
        return ResolutionRule::FixedColumn;
    case WantedKey::Form::Key:
        break;
    }
    return named > 1 ? ResolutionRule::Definition : ResolutionRule::OnlyName;
}

/// In the order in which candidates are listed, each once.
void sort_candidates(std::vector<KeyCandidate>* keys)
{
    std::map<std::string, KeyCandidate> byText;
    for (KeyCandidate& key : *keys) {
        byText.emplace(key.canonicalText(), std::move(key));
    }
    keys->clear();
    for (auto& [text, key] : byText) {
        keys->push_back(std::move(key));
    }
}

/// Each keyword's choice among the keys.
Resolutions choose(const WantedKeys& wanted, const KeysByName& keys)
{
    Resolutions resolutions;
    for (const auto& [keyword, key] : wanted) {
        const auto found = keys.find(key.name);
        resolutions[keyword] = choose_key(
            keyword, key, found == keys.end() ? std::vector<KeyCandidate>() : found->second);
    }
    return resolutions;
}

/// Asks the catalogue about the keywords that several keys agree with, and chooses again.
void settle_ambiguous(
    DBIF_Connection& connection,
    const WantedKeys& wanted,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    Resolutions* resolutions)
{
    std::vector<WantedKey> ambiguous;
    for (const auto& [keyword, resolution] : *resolutions) {
        if (resolution.outcome == Outcome::Ambiguous) {
            ambiguous.push_back(wanted.at(keyword));
        }
    }
    if (ambiguous.empty()) {
        return;
    }
    KeysByName keys = fixed_columns(wanted);
    for (KeyCandidate& held : held_keys(connection, ambiguous, condition, latestOnly)) {
        keys[held.name].push_back(std::move(held));
    }
    for (auto& [name, candidates] : keys) {
        sort_candidates(&candidates);
    }
    for (auto& [keyword, resolution] : *resolutions) {
        if (resolution.outcome != Outcome::Ambiguous) {
            continue;
        }
        Resolution settled = choose_key(keyword, wanted.at(keyword), keys[wanted.at(keyword).name]);
        settled.rule = ResolutionRule::Catalogue;
        settled.named = resolution.named;
        settled.agreeing = resolution.agreeing;
        resolution = std::move(settled);
    }
}

Resolutions resolve_wanted(
    DBIF_Connection& connection,
    const WantedKeys& wanted,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    const auto choose_by_definition = [&] {
        KeysByName keys = fixed_columns(wanted);
        add_definitions(connection, wanted, &keys);
        for (auto& [name, candidates] : keys) {
            sort_candidates(&candidates);
        }
        return choose(wanted, keys);
    };
    Resolutions resolutions = choose_by_definition();
    const bool isOneMissing =
        std::any_of(resolutions.begin(), resolutions.end(), [](const auto& entry) {
            return entry.second.outcome == Outcome::NotFound;
        });
    if (isOneMissing) {
        // It may have been defined meanwhile.
        dbif::ColumnStore::of(connection).refresh();
        resolutions = choose_by_definition();
    }
    settle_ambiguous(connection, wanted, condition, latestOnly, &resolutions);
    return resolutions;
}

Resolution without_key(Outcome outcome, Fault fault)
{
    Resolution resolution;
    resolution.outcome = outcome;
    resolution.fault = std::move(fault);
    return resolution;
}
} // namespace

Resolution choose_key(
    const std::string& keyword,
    const WantedKey& wanted,
    const std::vector<KeyCandidate>& keys)
{
    Resolution resolution;
    for (const KeyCandidate& key : keys) {
        resolution.named += key.name == wanted.name ? 1 : 0;
        if (agrees(wanted, key)) {
            resolution.candidates.push_back(key);
        }
    }
    resolution.agreeing = resolution.candidates.size();
    resolution.rule = rule_of(wanted, resolution.named);
    if (resolution.agreeing == 0) {
        resolution.fault = keyword_fault(
            Fault::Kind::UnknownKey, keyword,
            resolution_failure(
                keyword,
                "No matching key could be found in the database for the given keyword.\n"));
    } else if (resolution.agreeing > 1) {
        resolution.outcome = Outcome::Ambiguous;
        std::vector<std::string> forms;
        for (const KeyCandidate& key : resolution.candidates) {
            forms.push_back(key.functionForm());
        }
        resolution.fault =
            keyword_fault(Fault::Kind::AmbiguousKey, keyword, ambiguity_text(keyword, forms));
        resolution.fault.candidates = std::move(forms);
    } else {
        resolution.outcome =
            resolution.candidates.front().column.has_value() ? Outcome::Found : Outcome::NoColumn;
    }
    return resolution;
}

Resolutions resolve_keywords(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    WantedKeys wanted;
    for (const std::string& keyword : keywords) {
        std::variant<WantedKey, Fault> key = wanted_key(keyword);
        if (const Fault* fault = std::get_if<Fault>(&key)) {
            throw FaultError(*fault);
        }
        wanted.emplace(keyword, std::get<WantedKey>(std::move(key)));
    }
    return resolve_wanted(connection, wanted, condition, latestOnly);
}

Resolution resolve_keyword(
    DBIF_Connection& connection,
    const std::string& keyword,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    const std::string trimmed = dbif::trimmed(keyword);
    if (trimmed.empty()) {
        return without_key(
            Outcome::Malformed,
            keyword_fault(Fault::Kind::EmptyKeyword, keyword, empty_keyword_text(keyword)));
    }
    std::variant<WantedKey, Fault> key = wanted_key(keyword);
    if (const Fault* fault = std::get_if<Fault>(&key)) {
        Resolution resolution = without_key(Outcome::Malformed, *fault);
        resolution.fault.text = resolution_failure(keyword, reason_of(*fault));
        return resolution;
    }
    try {
        const WantedKeys wanted{{trimmed, std::get<WantedKey>(std::move(key))}};
        Resolution resolution =
            resolve_wanted(connection, wanted, condition, latestOnly).at(trimmed);
        resolution.fault.source = keyword;
        resolution.fault.position = keyword.find(trimmed);
        return resolution;
    } catch (const DBIF_Exception& exception) {
        std::string reason;
        dbapi_build_error_string_from_dbif_exception(exception, &reason);
        return without_key(
            Outcome::NotFound,
            keyword_fault(Fault::Kind::Database, keyword, resolution_failure(keyword, reason)));
    }
}
} // namespace dbapi
