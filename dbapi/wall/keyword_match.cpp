#include "dbapi/wall/keyword_match.h"

#include "dbapi/key/wanted_key.h"
#include "dbapi/words/keyword_parts.h"

#include <vector>

namespace {
std::string function_form_of(const std::string& candidate)
{
    dbapi::SplitKeyword split = dbapi::split_keyword(candidate);
    if (split.fault.has_value()) {
        split.parts = {candidate, {}, {}};
    }
    const dbapi::KeyAttributes attributes = dbapi::split_attributes(split.parts.attributes);
    const dbapi::KeyCandidate key{split.parts.keyname,    split.parts.tablename,
                                  split.parts.attributes, attributes.category,
                                  attributes.datatype,    std::nullopt};
    return key.functionForm();
}
} // namespace

bool dbapi_compare_keyword_key_table_attributes_are_potential_match_to_db_key(
    const std::string& keywordKeyname,
    const std::string& keywordTablename,
    const std::string& keywordDatatype,
    const std::string& keywordCategory,
    const std::string& databaseKeyname,
    const std::string& databaseTablename,
    const std::string& databaseDatatype,
    const std::string& databaseCategory)
{
    dbapi::WantedKey wanted;
    wanted.name = keywordKeyname;
    wanted.table = keywordTablename;
    wanted.category = keywordCategory;
    wanted.datatype = keywordDatatype;
    return dbapi::agrees(
        wanted, {databaseKeyname, databaseTablename, {}, databaseCategory, databaseDatatype, {}});
}

std::string dbapi_create_ambiguous_keyword_error_message(
    const std::string& keyword,
    const std::set<std::string>& candidates)
{
    std::vector<std::string> forms;
    for (const std::string& candidate : candidates) {
        forms.push_back(function_form_of(candidate));
    }
    return dbapi::ambiguity_text(keyword, forms);
}
