#include "dbapi/key/wanted_key.h"

#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

namespace dbapi {
namespace {
constexpr std::size_t kCandidatesPerLine = 3;

Fault qualified_builtin(
    const std::string& keyword,
    const std::string& column,
    const KeywordParts& parts)
{
    std::string reason = "Keyword consists of an VANTO builtin keyname: " + quoted(column) + ".\n";
    if (!parts.tablename.empty()) {
        reason += "When a builtin keyname is provided, no tablename should be provided!\n";
    }
    if (!parts.attributes.empty()) {
        reason +=
            "When a builtin keyname is provided, no datatype attributes or category|input|output "
            "attributes should be provided!\n";
    }
    return {
        Fault::Kind::QualifiedBuiltin,
        resolution_failure(dbif::trimmed(keyword), reason),
        Fault::Where::Keyword,
        keyword,
        0,
        keyword.size(),
        {}};
}
} // namespace

std::string resolution_failure(const std::string& keyword, const std::string& reason)
{
    return "Error: Failed to resolve keyword " + quoted(keyword) + " to a valid database key. \n" +
           reason;
}

std::string empty_keyword_text(const std::string& keyword)
{
    return "Error: Failed to resolve an empty keyword " + quoted(keyword) +
           " to a valid database key. \nAn empty keyword string is an invalid database key.\n";
}

std::string reason_of(const Fault& fault)
{
    const std::string heading = resolution_failure(dbif::trimmed(fault.source), {});
    return fault.text.substr(fault.kind == Fault::Kind::QualifiedBuiltin ? heading.size() : 0);
}

std::variant<WantedKey, Fault> wanted_key(const std::string& keyword)
{
    SplitKeyword split = split_keyword(keyword);
    if (split.fault.has_value()) {
        return *split.fault;
    }
    KeywordParts& parts = split.parts;
    WantedKey wanted;
    std::string column;
    std::string table;
    if (dbapi_is_vanto_builtin_keyname(parts.keyname, &column, &table)) {
        if (!parts.tablename.empty() || !parts.attributes.empty()) {
            return qualified_builtin(keyword, column, parts);
        }
        const bool isStored = dbapi_is_builtin_keyword_dynamic(parts.keyname);
        wanted.form = isStored ? WantedKey::Form::StoredBuiltin : WantedKey::Form::Builtin;
        parts = {column, table, isStored ? "" : "BUILTINFIXED"};
    }
    wanted.name = std::move(parts.keyname);
    wanted.table = std::move(parts.tablename);
    wanted.attributes = std::move(parts.attributes);
    KeyAttributes attributes = split_attributes(wanted.attributes);
    wanted.category = std::move(attributes.category);
    wanted.datatype = std::move(attributes.datatype);
    if (wanted.form == WantedKey::Form::Key && dbapi_is_category_fixed(wanted.category)) {
        wanted.form = WantedKey::Form::FixedColumn;
    }
    return wanted;
}

std::string KeyCandidate::canonicalText() const
{
    const std::string qualified = normalised(attributes);
    return table + (qualified.empty() ? "" : ";" + qualified) + "." + name;
}

std::string KeyCandidate::functionForm() const
{
    return dbif::trimmed(function_form(
        name, table, convert_to_full_datatype_name(datatype),
        convert_to_full_category_name(category)));
}

KeyCandidate candidate_of(dbif::RecordTable table, const dbif::KeyDefinition& key)
{
    const std::string datatype = dbif::to_utf8(dbif::datatype_name(key.kind));
    return {
        key.name,
        std::string(dbif::table_info(table).name),
        key.category + "|" + datatype,
        key.category,
        datatype,
        dbif::TableColumn(table, key)};
}

KeyCandidate fixed_candidate(const WantedKey& wanted)
{
    const dbif::TableInfo* table = dbif::find_table(wanted.table);
    const dbif::FixedColumnInfo* column =
        table == nullptr ? nullptr : dbif::find_fixed_column(*table, wanted.name);
    KeyCandidate candidate{wanted.name,     wanted.table,    wanted.attributes,
                           wanted.category, wanted.datatype, std::nullopt};
    if (column != nullptr) {
        candidate.column = dbif::TableColumn(table->table, *column);
    }
    return candidate;
}

bool agrees(const WantedKey& wanted, const KeyCandidate& candidate)
{
    if (wanted.name != candidate.name) {
        return false;
    }
    if (!wanted.table.empty() && wanted.table != candidate.table) {
        return false;
    }
    const std::string datatype = convert_to_short_datatype_name(wanted.datatype);
    if (!datatype.empty() && datatype != convert_to_short_datatype_name(candidate.datatype)) {
        return false;
    }
    return wanted.category.empty() || compare_category_names(wanted.category, candidate.category);
}

std::string ambiguity_text(const std::string& keyword, const std::vector<std::string>& candidates)
{
    std::string reason =
        "Ambiguous VANTO database keyword " + quoted(keyword) +
        ".\n"
        "Multiple keys have been found in the database tables with the same name,\n i.e. : ";
    std::size_t count = 0;
    for (const std::string& candidate : candidates) {
        if (count != 0) {
            reason += count % kCandidatesPerLine == 0 ? ", \n " : ", ";
        }
        reason += quoted(candidate);
        ++count;
    }
    return resolution_failure(keyword, reason + "\n");
}
} // namespace dbapi
