#include "dbapi/wall/keyword_map.h"

#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"

#include <iostream>

namespace {
std::string canonical_text(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes)
{
    const std::string qualified = dbapi::normalised(attributes);
    return tablename + (qualified.empty() ? "" : ";" + qualified) + "." + keyname;
}

void assign(std::string* output, const std::string& text)
{
    if (output != nullptr) {
        *output = text;
    }
}
} // namespace

void add_keyword_to_map(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& category,
    const std::string& datatype,
    std::map<std::string, std::string>* map)
{
    const std::string attributes = datatype.empty() ? category : category + "|" + datatype;
    map->emplace(dbapi::normalised(keyname), canonical_text(keyname, tablename, attributes));
}

bool dbapi_is_keyword_in_map(
    const std::map<std::string, std::string>& map,
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes)
{
    const std::string wanted = dbapi::normalised(keyword);
    const auto entry = wanted.empty() ? map.end() : map.find(wanted);
    const dbapi::KeywordParts found =
        entry == map.end() ? dbapi::KeywordParts() : dbapi::split_keyword(entry->second).parts;
    assign(keyname, found.keyname);
    assign(tablename, found.tablename);
    assign(attributes, found.attributes);
    return entry != map.end();
}

void add_keyword_to_map2(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes,
    std::map<std::string, std::set<std::string>>* map)
{
    (*map)[dbapi::normalised(keyname)].insert(canonical_text(keyname, tablename, attributes));
}

void add_keyword_entry_into_map(
    const std::string& keyname,
    const std::set<std::string>& texts,
    std::map<std::string, std::set<std::string>>* map)
{
    (*map)[dbapi::normalised(keyname)].insert(texts.begin(), texts.end());
}

bool dbapi_is_keyword_in_map2(
    const std::map<std::string, std::set<std::string>>& map,
    const std::string& keyword,
    std::set<std::string>* texts)
{
    const auto entry = map.find(dbapi::normalised(keyword));
    if (texts != nullptr) {
        *texts = entry == map.end() ? std::set<std::string>() : entry->second;
    }
    return entry != map.end();
}

std::map<std::string, std::set<std::string>> merge_maps(
    const std::map<std::string, std::set<std::string>>& a,
    const std::map<std::string, std::set<std::string>>& b)
{
    auto merged = a;
    for (const auto& [keyname, texts] : b) {
        merged[keyname].insert(texts.begin(), texts.end());
    }
    return merged;
}

void print_map_to_stderr(const std::map<std::string, std::string>& map)
{
    for (const auto& [keyword, text] : map) {
        std::cerr << keyword << " = " << text << "\n";
    }
}
