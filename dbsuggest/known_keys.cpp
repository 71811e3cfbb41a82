#include "dbsuggest/known_keys.h"

#include "dbapi/key/key_resolution.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <utility>

namespace dbapi {
namespace {
constexpr std::size_t kMostSuggested = 3;
} // namespace

std::map<std::string, std::vector<std::string>>
function_keywords(DBIF_Connection connection, const std::string& table)
{
    std::map<std::string, std::vector<std::string>> keywords;
    for (const dbif::RecordTable recordTable : dbif::kRecordTables) {
        const dbif::TableInfo& info = dbif::table_info(recordTable);
        const std::string name(info.name);
        if (info.keys == dbif::KeyKind::None || (!table.empty() && name != table)) {
            continue;
        }
        for (const dbif::KeyDefinition& key :
             dbif::ColumnStore::of(connection).all(connection, recordTable)) {
            const std::string datatype = dbif::to_utf8(dbif::datatype_name(key.kind));
            keywords[key.name].push_back(function_form(
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
    const Resolution found = resolve_keyword(connection_, keyword, nullptr, true);
    return found.isFound() ? std::optional(found.column().kind()) : std::nullopt;
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
    const SplitKeyword split = split_keyword(keyword);
    if (split.fault.has_value()) {
        return {};
    }
    const std::string& name = split.parts.keyname;
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
    const Resolution found = resolve_keyword(connection_, keyword, nullptr, true);
    if (!found.isFound()) {
        return keyword;
    }
    const dbif::TableColumn& column = found.column();
    return keyword + " (" + std::string(column.name()) + " of the table " +
           std::string(dbif::table_info(column.table()).name) + ")";
}
} // namespace dbapi
