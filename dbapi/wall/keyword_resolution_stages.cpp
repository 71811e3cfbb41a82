#include "dbapi/wall/keyword_resolution_stages.h"

#include "dbapi/key/key_resolution.h"
#include "dbapi/wall/map_resolution.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

namespace {
/// The three texts of a resolved key.
struct Names
{
    std::string keyname;
    std::string tablename;
    std::string attributes;
};

/// Hands a stage's result to the caller's outputs.
bool hand_over(
    const Names* names,
    const std::string& message,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    *keyname = names == nullptr ? std::string() : names->keyname;
    *tablename = names == nullptr ? std::string() : names->tablename;
    *attributes = names == nullptr ? std::string() : names->attributes;
    dbif::clear_error(error);
    if (!message.empty()) {
        dbif::deliver_error(error, message);
    }
    return names != nullptr;
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
    const auto wanted = dbapi::wanted_key(keyword);
    if (const auto* fault = std::get_if<dbapi::Fault>(&wanted)) {
        return hand_over(nullptr, fault->text, keyname, tablename, attributes, error);
    }
    const auto& key = std::get<dbapi::WantedKey>(wanted);
    const Names names{key.name, key.table, key.attributes};
    return hand_over(&names, {}, keyname, tablename, attributes, error);
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
    const dbapi::Resolution resolution = dbapi::resolve_by_map(keyword, map);
    if (!resolution.isUnique()) {
        return hand_over(nullptr, resolution.fault.text, keyname, tablename, attributes, error);
    }
    const dbapi::KeyCandidate& key = resolution.candidates.front();
    const Names names{key.name, key.table, key.attributes};
    return hand_over(&names, {}, keyname, tablename, attributes, error);
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
