#include "dbsuggest/known_keys.h"

#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <utility>

namespace dbapi::tool {
namespace {
constexpr std::size_t kMostSuggested = 3;

/// The fixed column that a builtin keyname stands for; null where the table has none of that name.
const dbif::FixedColumnFacts* fixed_column(const ResolvedKey& key)
{
    const dbif::TableFacts* table = dbif::find_table(key.tablename);
    return table == nullptr ? nullptr : dbif::find_fixed_column(*table, key.keyname);
}
} // namespace

std::map<std::string, std::vector<std::string>>
function_keywords(DBIF_Connection connection, const std::string& table)
{
    std::map<std::string, std::vector<std::string>> keywords;
    for (const dbif::RecordTable recordTable : dbif::kRecordTables) {
        const dbif::TableFacts& facts = dbif::facts(recordTable);
        const std::string name(facts.name);
        if (facts.keys == dbif::KeyKind::None || (!table.empty() && name != table)) {
            continue;
        }
        for (const dbif::KeyDefinition& key :
             dbif::ColumnStore::of(connection).all(connection, recordTable)) {
            const std::string datatype = dbif::to_utf8(dbif::datatype_name(key.kind));
            keywords[key.name].push_back(dbapi_full_keyname_from_keyname_and_attributes(
                key.name, name, convert_to_full_datatype_name(datatype),
                convert_to_full_category_name(key.category)));
        }
    }
    return keywords;
}

KnownKeys::KnownKeys(DBIF_Connection connection)
    : connection_(std::move(connection)), spellings_(function_keywords(connection_))
{
    std::set<std::string> builtins;
    db_get_builtin_keynames(&builtins);
    for (const std::string& builtin : builtins) {
        spellings_[builtin];
    }
    for (const auto& [name, spellings] : spellings_) {
        names_.insert(name);
    }
}

std::optional<dbif::ValueKind> KnownKeys::kindOf(const std::string& keyword)
{
    ResolvedKey key;
    std::string ignored;
    if (!resolve_keyword_by_definition(
            connection_, keyword, &key, nullptr, true, nullptr, &ignored)) {
        return std::nullopt;
    }
    std::string category;
    std::string datatype;
    dbapi_extract_category_datatype_attributes(key.attributes, &category, &datatype);
    if (!dbapi_is_category_fixed(category)) {
        return dbif::value_kind(dbif::to_qt(datatype));
    }
    const dbif::FixedColumnFacts* column = fixed_column(key);
    if (column == nullptr) {
        return std::nullopt;
    }
    return column->kind == dbif::FixedKind::Text ? dbif::ValueKind::Text : dbif::ValueKind::Double;
}

std::vector<std::string> KnownKeys::keywordsFor(const std::string& name) const
{
    const auto found = spellings_.find(name);
    if (found == spellings_.end() || found->second.size() < 2) {
        return {name};
    }
    return found->second;
}

std::vector<std::string> KnownKeys::near(const std::string& keyword) const
{
    std::string name;
    std::string table;
    std::string attributes;
    std::string ignored;
    if (!break_keyword_into_keyname_tablename_extra_attributes(
            keyword, &name, &table, &attributes, &ignored)) {
        return {};
    }
    // "devise.W": a table that is none counts as part of the name.
    const std::size_t dot = name.find('.');
    for (const std::string& exact :
         {name, dot == std::string::npos ? name : name.substr(dot + 1)}) {
        const auto found = spellings_.find(exact);
        if (found != spellings_.end() && !found->second.empty()) {
            return found->second; // of another table, category or data type
        }
    }
    std::vector<std::string> keywords;
    for (const std::string& found : nearest_texts(name, names_, kMostSuggested)) {
        for (const std::string& spelling : keywordsFor(found)) {
            keywords.push_back(spelling);
        }
    }
    keywords.resize(std::min(keywords.size(), kMostSuggested));
    return keywords;
}

std::string KnownKeys::describe(const std::string& keyword)
{
    ResolvedKey key;
    std::string ignored;
    const bool isKnown =
        resolve_keyword_by_definition(connection_, keyword, &key, nullptr, true, nullptr, &ignored);
    return keyword + (isKnown ? " (" + key.keyname + " of the table " + key.tablename + ")" : "");
}
} // namespace dbapi::tool
