#include "dbapi/wall/keyword_resolution.h"

#include "dbapi/key/key_catalogue.h"
#include "dbapi/key/key_resolution.h"
#include "dbapi/words/database_fault.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

#include <vector>

bool dbapi_resolve_set_of_keywords(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    std::map<std::string, std::set<std::string>>* map,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error)
{
    map->clear();
    dbif::clear_error(error);
    std::map<std::string, std::set<std::string>> found;
    std::vector<dbapi::WantedKey> stored;
    for (const std::string& keyword : keywords) {
        const auto wanted = dbapi::wanted_key(keyword);
        if (const auto* fault = std::get_if<dbapi::Fault>(&wanted)) {
            dbif::deliver_error(error, dbapi::reason_of(*fault));
            return false;
        }
        const auto& key = std::get<dbapi::WantedKey>(wanted);
        if (key.isFixed()) {
            add_keyword_to_map2(key.name, key.table, key.attributes, &found);
        } else {
            stored.push_back(key);
        }
    }
    try {
        for (const dbapi::KeyCandidate& key :
             dbapi::held_keys(connection, stored, condition, flag)) {
            add_keyword_to_map2(key.name, key.table, key.attributes, &found);
        }
    } catch (const DBIF_Exception& exception) {
        dbif::deliver_error(error, dbapi::database_fault(exception).text);
        return false;
    }
    *map = std::move(found);
    return true;
}

bool dbapi_extract_db_names_from_keyword(
    DBIF_Connection& connection,
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error)
{
    const dbapi::ResolutionMark mark;
    keyname->clear();
    tablename->clear();
    attributes->clear();
    const std::string trimmed = dbif::trimmed(keyword);
    if (trimmed.empty()) {
        dbif::deliver_error(error, dbapi::empty_keyword_text(keyword));
        return false;
    }
    std::map<std::string, std::set<std::string>> map;
    std::string reason;
    if (!dbapi_resolve_set_of_keywords(connection, {trimmed}, &map, condition, flag, &reason)) {
        dbif::deliver_error(error, dbapi::resolution_failure(keyword, reason));
        return false;
    }
    return dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
        trimmed, map, keyname, tablename, attributes, error);
}
