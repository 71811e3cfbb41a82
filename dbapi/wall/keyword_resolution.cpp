#include "dbapi/wall/keyword_resolution.h"

#include "dbapi/key/key_term.h"
#include "dbapi/wall/catalogue_reader.h"
#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {
using KeywordMap = std::map<std::string, std::set<std::string>>;

/// The tables that have stored keys, in the order in which they are asked.
constexpr std::array kKeyedTables{
    dbif::RecordTable::CatalogEntry, dbif::RecordTable::Device, dbif::RecordTable::Measurement,
    dbif::RecordTable::MeasurementCondition, dbif::RecordTable::Setup};

/// What keywords ask for: fixed columns, which are known, and terms to look for per table.
struct Wanted
{
    KeywordMap fixed;
    std::array<std::set<dbapiKeyTermC>, kKeyedTables.size()> terms;
};

/// Adds a keyword's term to the tables that it could mean.
void add_term(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& category,
    const std::string& datatype,
    Wanted* wanted)
{
    for (std::size_t i = 0; i < kKeyedTables.size(); ++i) {
        const std::string table(dbif::facts(kKeyedTables.at(i)).name);
        if (tablename.empty() || tablename == table) {
            wanted->terms.at(i).emplace(keyname, table, category, datatype);
        }
    }
}

bool collect_terms(const std::set<std::string>& keywords, Wanted* wanted, std::string* error)
{
    for (const std::string& keyword : keywords) {
        std::string keyname;
        std::string tablename;
        std::string attributes;
        if (!dbapi_extract_potential_db_names_from_keyword(
                keyword, &keyname, &tablename, &attributes, error)) {
            return false;
        }
        std::string category;
        std::string datatype;
        dbapi_extract_category_datatype_attributes(attributes, &category, &datatype);
        if (dbapi_is_category_fixed(category)) {
            add_keyword_to_map2(keyname, tablename, attributes, &wanted->fixed);
        } else {
            add_term(keyname, tablename, category, datatype, wanted);
        }
    }
    return true;
}

bool add_from_catalogue(
    DBIF_Connection& connection,
    const Wanted& wanted,
    KeywordMap* map,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error)
{
    for (std::size_t i = 0; i < kKeyedTables.size(); ++i) {
        if (wanted.terms.at(i).empty()) {
            continue;
        }
        const std::string table(dbif::facts(kKeyedTables.at(i)).name);
        QSqlQuery query;
        if (!dbapi_get_keynames_for_table_as_query_results(
                connection, &query, wanted.terms.at(i), condition, table, flag, error)) {
            return false;
        }
        dbapi_update_map_of_keynames_from_query_results(table, query, map);
    }
    return true;
}

/// The keys of one table that have one of the names.
void add_definitions(
    DBIF_Connection& connection,
    dbif::RecordTable table,
    const std::set<std::string>& names,
    KeywordMap* map)
{
    const std::string tablename(dbif::facts(table).name);
    for (const dbif::KeyDefinition& definition :
         dbif::ColumnStore::of(connection).all(connection, table)) {
        if (names.contains(definition.name)) {
            const std::string datatype = dbif::to_utf8(dbif::datatype_name(definition.kind));
            add_keyword_to_map2(
                definition.name, tablename, definition.category + "|" + datatype, map);
        }
    }
}

/// The keys of the wanted names, whether a record has them or not, and the fixed columns.
KeywordMap map_of_definitions(DBIF_Connection& connection, const Wanted& wanted)
{
    KeywordMap map = wanted.fixed;
    for (std::size_t i = 0; i < kKeyedTables.size(); ++i) {
        std::set<std::string> names;
        for (const dbapiKeyTermC& term : wanted.terms.at(i)) {
            names.insert(term.keyname());
        }
        if (!names.empty()) {
            add_definitions(connection, kKeyedTables.at(i), names, &map);
        }
    }
    return map;
}

/// How many keys of the map agree with the keyword, as far as that decides: 0, 1, or 2 for several.
int count_matches(const std::string& keyword, const KeywordMap& map)
{
    dbapi::ResolvedKey key;
    std::string error;
    if (dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
            keyword, map, &key.keyname, &key.tablename, &key.attributes, &error)) {
        return 1;
    }
    return error.find("Ambiguous VANTO database keyword") == std::string::npos ? 0 : 2;
}

/// The smallest and the largest number of matches among the keywords.
std::pair<int, int> count_matches(const std::set<std::string>& keywords, const KeywordMap& map)
{
    std::pair<int, int> range{2, 0};
    for (const std::string& keyword : keywords) {
        const int count = count_matches(keyword, map);
        range = {std::min(range.first, count), std::max(range.second, count)};
    }
    return range;
}

/// The map of definitions for the keywords. Where one finds nothing, the definitions are read anew:
/// it may have been defined meanwhile.
KeywordMap current_definitions(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    const Wanted& wanted)
{
    KeywordMap map = map_of_definitions(connection, wanted);
    if (!keywords.empty() && count_matches(keywords, map).first == 0) {
        dbif::ColumnStore::of(connection).refresh();
        map = map_of_definitions(connection, wanted);
    }
    return map;
}

std::string failure_heading(const std::string& keyword)
{
    return "Error: Failed to resolve keyword \"" + keyword + "\" to a valid database key. \n";
}
} // namespace

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
    Wanted wanted;
    KeywordMap found;
    if (!collect_terms(keywords, &wanted, error) ||
        !add_from_catalogue(connection, wanted, &found, condition, flag, error)) {
        return false;
    }
    *map = merge_maps(wanted.fixed, found);
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
        dbif::deliver_error(
            error,
            "Error: Failed to resolve an empty keyword \"" + keyword +
                "\" to a valid database key. \nAn empty keyword string is an invalid database key.\n");
        return false;
    }
    KeywordMap map;
    std::string reason;
    if (!dbapi_resolve_set_of_keywords(connection, {trimmed}, &map, condition, flag, &reason)) {
        dbif::deliver_error(error, failure_heading(keyword) + reason);
        return false;
    }
    return dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
        trimmed, map, keyname, tablename, attributes, error);
}

namespace dbapi {
bool resolve_set_of_keywords_by_definition(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    std::map<std::string, std::set<std::string>>* map,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error)
{
    map->clear();
    dbif::clear_error(error);
    Wanted wanted;
    if (!collect_terms(keywords, &wanted, error)) {
        return false;
    }
    KeywordMap found = current_definitions(connection, keywords, wanted);
    if (count_matches(keywords, found).second > 1) {
        return dbapi_resolve_set_of_keywords(connection, keywords, map, condition, flag, error);
    }
    *map = std::move(found);
    return true;
}

bool resolve_keyword_by_definition(
    DBIF_Connection& connection,
    const std::string& keyword,
    ResolvedKey* key,
    const DBIF_QueryCondition* condition,
    bool flag,
    bool* isByDefinition,
    std::string* error)
{
    const ResolutionMark mark;
    *key = ResolvedKey();
    bool ignoredFlag = false;
    bool& holdsAlways = isByDefinition == nullptr ? ignoredFlag : *isByDefinition;
    holdsAlways = false;
    const std::string trimmed = dbif::trimmed(keyword);
    Wanted wanted;
    std::string ignored;
    if (!trimmed.empty() && collect_terms({trimmed}, &wanted, &ignored)) {
        const KeywordMap found = current_definitions(connection, {trimmed}, wanted);
        if (count_matches(trimmed, found) < 2) {
            holdsAlways = true;
            return dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
                trimmed, found, &key->keyname, &key->tablename, &key->attributes, error);
        }
    }
    return dbapi_extract_db_names_from_keyword(
        connection, keyword, &key->keyname, &key->tablename, &key->attributes, condition, flag,
        error);
}
} // namespace dbapi
