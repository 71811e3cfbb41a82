#include "dbapi/resolution_rule.h"

#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"

namespace dbapi {
namespace {
/// What a keyword says of its key.
struct KeywordParts
{
    ResolvedKey names;
    std::string category;
    std::string datatype;
};

bool agrees(
    const KeywordParts& keyword,
    const dbif::TableFacts& table,
    const dbif::KeyDefinition& key)
{
    return dbapi_compare_keyword_key_table_attributes_are_potential_match_to_db_key(
        keyword.names.keyname, keyword.names.tablename, keyword.datatype, keyword.category,
        key.name, std::string(table.name), dbif::to_utf8(dbif::datatype_name(key.kind)),
        key.category);
}

void count_definitions(DBIF_Connection& connection, const KeywordParts& keyword, RuledKey* found)
{
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        const dbif::TableFacts& facts = dbif::facts(table);
        if (facts.keys == dbif::KeyKind::None) {
            continue;
        }
        for (const dbif::KeyDefinition& key :
             dbif::ColumnStore::of(connection).all(connection, table)) {
            found->named += key.name == keyword.names.keyname ? 1 : 0;
            found->agreeing += agrees(keyword, facts, key) ? 1 : 0;
        }
    }
}
} // namespace

bool resolve_keyword_with_rule(
    DBIF_Connection& connection,
    const std::string& keyword,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    RuledKey* found,
    std::string* error)
{
    *found = RuledKey();
    bool isByDefinition = false;
    KeywordParts parts;
    if (!resolve_keyword_by_definition(
            connection, keyword, &found->key, condition, latestOnly, &isByDefinition, error) ||
        !dbapi_extract_potential_db_names_from_keyword(
            keyword, &parts.names.keyname, &parts.names.tablename, &parts.names.attributes,
            error)) {
        return false;
    }
    dbapi_extract_category_datatype_attributes(
        parts.names.attributes, &parts.category, &parts.datatype);
    if (dbapi_is_category_fixed(parts.category)) {
        const bool isBuiltin = dbapi::compare_category_names(parts.category, "BUILTINFIXED");
        found->rule = isBuiltin ? ResolutionRule::Builtin : ResolutionRule::FixedColumn;
        return true;
    }
    count_definitions(connection, parts, found);
    if (dbapi_is_builtin_keyword_dynamic(keyword)) {
        found->rule = ResolutionRule::StoredBuiltin;
    } else if (!isByDefinition) {
        found->rule = ResolutionRule::Catalogue;
    } else if (found->named > 1) {
        found->rule = ResolutionRule::Definition;
    }
    return true;
}
} // namespace dbapi
