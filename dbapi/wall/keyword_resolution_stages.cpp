#include "dbapi/wall/keyword_resolution_stages.h"

#include "dbapi/wall/keyword_map.h"
#include "dbapi/wall/keyword_match.h"
#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

namespace {
struct Key
{
    std::string keyname;
    std::string tablename;
    std::string attributes;
};

bool split(const std::string& keyword, Key* key, std::string* error)
{
    return break_keyword_into_keyname_tablename_extra_attributes(
        keyword, &key->keyname, &key->tablename, &key->attributes, error);
}

std::string failure(const std::string& keyword, const std::string& reason)
{
    return "Error: Failed to resolve keyword " + dbapi::quoted(keyword) +
           " to a valid database key. \n" + reason;
}

std::string no_match(const std::string& keyword)
{
    return failure(
        keyword, "No matching key could be found in the database for the given keyword.\n");
}

bool find_potential_names(const std::string& keyword, Key* found, std::string* error)
{
    Key key;
    if (!split(keyword, &key, error)) {
        return false;
    }
    Key builtin;
    if (!dbapi_is_vanto_builtin_keyname(key.keyname, &builtin.keyname, &builtin.tablename)) {
        *found = std::move(key);
        return true;
    }
    if (key.tablename.empty() && key.attributes.empty()) {
        builtin.attributes = dbapi_is_builtin_keyword_dynamic(key.keyname) ? "" : "BUILTINFIXED";
        *found = std::move(builtin);
        return true;
    }
    std::string reason =
        "Keyword consists of an VANTO builtin keyname: " + dbapi::quoted(builtin.keyname) + ".\n";
    if (!key.tablename.empty()) {
        reason += "When a builtin keyname is provided, no tablename should be provided!\n";
    }
    if (!key.attributes.empty()) {
        reason +=
            "When a builtin keyname is provided, no datatype attributes or category|input|output "
            "attributes should be provided!\n";
    }
    *error = failure(keyword, reason);
    return false;
}

bool agrees(const Key& keyword, const Key& candidate)
{
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(keyword.attributes, &category, &datatype);
    std::string candidateCategory;
    std::string candidateDatatype;
    dbapi_extract_category_datatype_attributes(
        candidate.attributes, &candidateCategory, &candidateDatatype);
    return dbapi_compare_keyword_key_table_attributes_are_potential_match_to_db_key(
        keyword.keyname, keyword.tablename, datatype, category, candidate.keyname,
        candidate.tablename, candidateDatatype, candidateCategory);
}

bool find_resolved_names(
    const std::string& keyword,
    const std::map<std::string, std::set<std::string>>& map,
    Key* found,
    std::string* error)
{
    Key wanted;
    if (!find_potential_names(dbif::trimmed(keyword), &wanted, error)) {
        return false;
    }
    const auto entry = map.find(dbapi::normalised(wanted.keyname));
    if (entry == map.end()) {
        *error = no_match(keyword);
        return false;
    }
    std::set<std::string> candidates;
    Key match;
    std::string splitError;
    for (const std::string& text : entry->second) {
        Key candidate;
        if (split(text, &candidate, &splitError) && agrees(wanted, candidate)) {
            candidates.insert(text);
            match = std::move(candidate);
        }
    }
    if (candidates.size() == 1) {
        *found = std::move(match);
        return true;
    }
    if (candidates.size() > 1) {
        *error = dbapi_create_ambiguous_keyword_error_message(keyword, candidates);
    } else {
        const bool isOnlyTextBroken = entry->second.size() == 1 && !splitError.empty();
        *error = isOnlyTextBroken ? splitError : no_match(keyword);
    }
    return false;
}

/// Hands a stage's result to the caller's outputs.
bool hand_over(
    bool isFound,
    Key key,
    const std::string& message,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    *keyname = std::move(key.keyname);
    *tablename = std::move(key.tablename);
    *attributes = std::move(key.attributes);
    dbif::clear_error(error);
    if (!message.empty()) {
        dbif::deliver_error(error, message);
    }
    return isFound;
}

// A host uses the library in one thread.
bool isResolving = false; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
} // namespace

bool dbapi_extract_potential_db_names_from_keyword(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    const dbapi::ResolutionMark mark;
    Key key;
    std::string message;
    const bool isFound = find_potential_names(dbif::trimmed(keyword), &key, &message);
    return hand_over(isFound, std::move(key), message, keyname, tablename, attributes, error);
}

bool dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
    const std::string& keyword,
    const std::map<std::string, std::set<std::string>>& map,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    const dbapi::ResolutionMark mark;
    Key key;
    std::string message;
    const bool isFound = find_resolved_names(keyword, map, &key, &message);
    return hand_over(isFound, std::move(key), message, keyname, tablename, attributes, error);
}

namespace dbapi {
ResolutionMark::ResolutionMark() : isOutermost_(!isResolving)
{
    isResolving = true;
}

ResolutionMark::~ResolutionMark()
{
    if (isOutermost_) {
        isResolving = false;
    }
}

bool ResolutionMark::is_resolving()
{
    return isResolving;
}
} // namespace dbapi
