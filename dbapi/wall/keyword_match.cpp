#include "dbapi/wall/keyword_match.h"

#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

namespace {
constexpr std::size_t kCandidatesPerLine = 3;

std::string function_form(const std::string& candidate)
{
    std::string keyname;
    std::string tablename;
    std::string attributes;
    std::string error;
    if (!break_keyword_into_keyname_tablename_extra_attributes(
            candidate, &keyname, &tablename, &attributes, &error)) {
        keyname = candidate;
        tablename.clear();
        attributes.clear();
    }
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(attributes, &category, &datatype);
    return dbif::trimmed(dbapi_full_keyname_from_keyname_and_attributes(
        keyname, tablename, dbapi::convert_to_full_datatype_name(datatype),
        dbapi::convert_to_full_category_name(category)));
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
    if (keywordKeyname != databaseKeyname) {
        return false;
    }
    if (!keywordTablename.empty() && keywordTablename != databaseTablename) {
        return false;
    }
    const std::string datatype = dbapi::convert_to_short_datatype_name(keywordDatatype);
    if (!datatype.empty() && datatype != dbapi::convert_to_short_datatype_name(databaseDatatype)) {
        return false;
    }
    return keywordCategory.empty() ||
           dbapi::compare_category_names(keywordCategory, databaseCategory);
}

std::string dbapi_create_ambiguous_keyword_error_message(
    const std::string& keyword,
    const std::set<std::string>& candidates)
{
    std::string message =
        "Error: Failed to resolve keyword " + dbapi::quoted(keyword) +
        " to a valid database key. \n"
        "Ambiguous VANTO database keyword " +
        dbapi::quoted(keyword) +
        ".\n"
        "Multiple keys have been found in the database tables with the same name,\n i.e. : ";
    std::size_t count = 0;
    for (const std::string& candidate : candidates) {
        if (count != 0) {
            message += count % kCandidatesPerLine == 0 ? ", \n " : ", ";
        }
        message += dbapi::quoted(function_form(candidate));
        ++count;
    }
    return message + "\n";
}
