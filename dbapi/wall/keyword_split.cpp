#include "dbapi/wall/keyword_split.h"

#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

#include <array>
#include <string_view>

namespace {
using dbapi::quoted;

constexpr std::string_view kFunction = "KEY(";

struct Parts
{
    std::string keyname;
    std::string tablename;
    std::string attributes;
};

std::string syntax_error(const std::string& keyword, const std::string& complaint)
{
    return "Error: Invalid keyword syntax. \nThe keyword " + quoted(keyword) + complaint + "\n";
}

bool is_table(std::string_view spelling)
{
    std::string tablename;
    std::string attributes;
    return dbapi_find_tablename_in_table_vocabulary(std::string(spelling), &tablename, &attributes);
}

/// Up to four fields between commas; text after a fourth comma is no field.
std::array<std::string, 4> fields_of(std::string_view content)
{
    std::array<std::string, 4> fields;
    for (std::string& field : fields) {
        const std::size_t comma = content.find(',');
        field = content.substr(0, comma);
        if (comma == std::string_view::npos) {
            break;
        }
        content.remove_prefix(comma + 1);
    }
    return fields;
}

bool split_function_form(
    const std::string& keyword,
    std::size_t contentBegin,
    Parts* parts,
    std::string* error)
{
    if (keyword.back() != ')') {
        *error = syntax_error(
            keyword,
            " is missing a closing paranthesis ')' character at the end of the keyword string.");
        return false;
    }
    const auto fields = fields_of(
        std::string_view(keyword).substr(contentBegin, keyword.size() - 1 - contentBegin));
    parts->keyname = fields[0];
    parts->tablename = fields[1];
    std::string datatype;
    if (!fields[2].empty() && !dbapi_find_datatype_from_datatype_vocabulary(fields[2], &datatype)) {
        *error =
            syntax_error(keyword, " has an invalid data type specified " + quoted(fields[2]) + ".");
        return false;
    }
    std::string category;
    if (!fields[3].empty() && !dbapi_find_category_from_category_vocabulary(fields[3], &category)) {
        *error =
            syntax_error(keyword, " has an invalid category specified " + quoted(fields[3]) + ".");
        return false;
    }
    parts->attributes = datatype.empty() ? category : category + "|" + datatype;
    return true;
}

void split_dotted_form(const std::string& keyword, std::size_t dot, Parts* parts)
{
    const std::string_view all = keyword;
    std::string_view table = dbapi::trimmed_view(all.substr(0, dot));
    bool isTable = is_table(table);
    if (const std::size_t semicolon = table.find(';');
        !isTable && semicolon != std::string_view::npos) {
        // The attributes stay even when no table precedes them and the whole text is a key name.
        parts->attributes = dbapi::trimmed_view(table.substr(semicolon + 1));
        table = dbapi::trimmed_view(table.substr(0, semicolon));
        isTable = is_table(table);
    }
    parts->keyname = isTable ? dbapi::trimmed_view(all.substr(dot + 1)) : all;
    parts->tablename = isTable ? table : std::string_view();
}

/// Replaces the table's spelling by its name, and adds the attributes that the spelling implies.
bool resolve_table(const std::string& keyword, Parts* parts, std::string* error)
{
    std::string tablename;
    std::string implied;
    if (!dbapi_find_tablename_in_table_vocabulary(parts->tablename, &tablename, &implied)) {
        *error = syntax_error(
            keyword, " has an invalid table name specified " + quoted(parts->tablename) + ".");
        return false;
    }
    if (parts->attributes.empty()) {
        parts->attributes = implied;
    } else if (!implied.empty() && implied != parts->attributes) {
        const std::string category = dbif::trimmed(
            std::string_view(parts->attributes).substr(0, parts->attributes.find('|')));
        *error = syntax_error(
            keyword,
            " has a table specified " + quoted(parts->tablename) +
                " which denotes a category that is incompatible with the specified category " +
                quoted(category) + " in the keyword.");
        return false;
    }
    parts->tablename = tablename;
    return true;
}

bool split(const std::string& keyword, Parts* parts, std::string* error)
{
    const std::size_t function = dbif::upper_case(keyword).find(kFunction);
    const std::size_t dot = keyword.find('.');
    if (function != std::string::npos) {
        if (!split_function_form(keyword, function + kFunction.size(), parts, error)) {
            return false;
        }
    } else if (dot != std::string::npos) {
        split_dotted_form(keyword, dot, parts);
    } else {
        parts->keyname = keyword;
    }
    return parts->tablename.empty() || resolve_table(keyword, parts, error);
}
} // namespace

bool break_keyword_into_keyname_tablename_extra_attributes(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    Parts parts;
    std::string complaint;
    const bool isValid = split(dbif::trimmed(keyword), &parts, &complaint);
    *keyname = std::move(parts.keyname);
    *tablename = std::move(parts.tablename);
    *attributes = std::move(parts.attributes);
    *error = std::move(complaint);
    return isValid;
}

void dbapi_extract_category_datatype_attributes(
    const std::string& attributes,
    std::string* category,
    std::string* datatype)
{
    const std::string text = dbapi::normalised(attributes);
    const std::size_t bar = text.find('|');
    if (bar == std::string::npos) {
        *category = text;
        datatype->clear();
        return;
    }
    *category = dbif::trimmed(text.substr(0, bar));
    *datatype = dbif::trimmed(text.substr(bar + 1));
}

std::string dbapi_full_keyname_from_keyname_and_attributes(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& datatype,
    const std::string& category)
{
    std::string text = "Key(" + dbif::trimmed(keyname);
    // Fields are kept by position, so an empty one is written when another follows it.
    if (!category.empty() || !datatype.empty() || !tablename.empty()) {
        text += "," + dbif::trimmed(tablename);
    }
    if (!category.empty() || !datatype.empty()) {
        text += "," + dbif::trimmed(datatype);
    }
    if (!category.empty()) {
        text += "," + dbif::trimmed(category);
    }
    return text + ")";
}
