#include "dbapi/words/keyword_parts.h"

#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

#include <array>

namespace dbapi {
namespace {
constexpr std::string_view kFunction = "KEY(";

/// A fault in the piece of the keyword that `piece` points to.
Fault syntax_fault(const std::string& keyword, std::string_view piece, const std::string& complaint)
{
    return {
        Fault::Kind::MalformedKeyword,
        "Error: Invalid keyword syntax. \nThe keyword " + quoted(keyword) + complaint + "\n",
        Fault::Where::Keyword,
        keyword,
        static_cast<std::size_t>(piece.data() - keyword.data()),
        piece.size(),
        {}};
}

bool is_table(std::string_view spelling)
{
    std::string tablename;
    std::string attributes;
    return dbapi_find_tablename_in_table_vocabulary(std::string(spelling), &tablename, &attributes);
}

/// Up to four fields between commas; text after a fourth comma is no field. They point into
/// `content`.
std::array<std::string_view, 4> fields_of(std::string_view content)
{
    std::array<std::string_view, 4> fields;
    fields.fill(content.substr(content.size()));
    for (std::string_view& field : fields) {
        const std::size_t comma = content.find(',');
        field = content.substr(0, comma);
        if (comma == std::string_view::npos) {
            break;
        }
        content.remove_prefix(comma + 1);
    }
    return fields;
}

/// The short name of a field's word, by a vocabulary; nothing in an empty field.
template <typename Find>
std::optional<std::string> short_name(std::string_view field, const Find& find)
{
    std::string name;
    return field.empty() || find(std::string(field), &name) ? std::optional(name) : std::nullopt;
}

/// A keyword while it is taken apart. The table is kept where the keyword names it.
struct Splitting
{
    const std::string& keyword;
    KeywordParts parts;
    std::string_view table;
};

std::optional<Fault> split_function_form(std::size_t contentBegin, Splitting* split)
{
    const std::string_view keyword = split->keyword;
    if (keyword.back() != ')') {
        return syntax_fault(
            split->keyword, keyword.substr(keyword.size()),
            " is missing a closing paranthesis ')' character at the end of the keyword string.");
    }
    const auto fields = fields_of(keyword.substr(contentBegin, keyword.size() - 1 - contentBegin));
    split->parts.keyname = fields[0];
    split->parts.tablename = fields[1];
    split->table = fields[1];
    const auto datatype = short_name(fields[2], dbapi_find_datatype_from_datatype_vocabulary);
    if (!datatype.has_value()) {
        return syntax_fault(
            split->keyword, fields[2],
            " has an invalid data type specified " + quoted(fields[2]) + ".");
    }
    const auto category = short_name(fields[3], dbapi_find_category_from_category_vocabulary);
    if (!category.has_value()) {
        return syntax_fault(
            split->keyword, fields[3],
            " has an invalid category specified " + quoted(fields[3]) + ".");
    }
    split->parts.attributes = datatype->empty() ? *category : *category + "|" + *datatype;
    return std::nullopt;
}

void split_dotted_form(std::size_t dot, Splitting* split)
{
    const std::string_view all = split->keyword;
    std::string_view table = trimmed_view(all.substr(0, dot));
    bool isTable = is_table(table);
    if (const std::size_t semicolon = table.find(';');
        !isTable && semicolon != std::string_view::npos) {
        // The attributes stay even when no table precedes them and the whole text is a key name.
        split->parts.attributes = trimmed_view(table.substr(semicolon + 1));
        table = trimmed_view(table.substr(0, semicolon));
        isTable = is_table(table);
    }
    split->parts.keyname = isTable ? trimmed_view(all.substr(dot + 1)) : all;
    split->parts.tablename = isTable ? table : std::string_view();
    split->table = table;
}

/// Replaces the table's spelling by its name, and adds the attributes that the spelling implies.
std::optional<Fault> resolve_table(Splitting* split)
{
    KeywordParts& parts = split->parts;
    std::string tablename;
    std::string implied;
    if (!dbapi_find_tablename_in_table_vocabulary(parts.tablename, &tablename, &implied)) {
        return syntax_fault(
            split->keyword, split->table,
            " has an invalid table name specified " + quoted(parts.tablename) + ".");
    }
    if (parts.attributes.empty()) {
        parts.attributes = implied;
    } else if (!implied.empty() && implied != parts.attributes) {
        const std::string category =
            dbif::trimmed(std::string_view(parts.attributes).substr(0, parts.attributes.find('|')));
        return syntax_fault(
            split->keyword, split->table,
            " has a table specified " + quoted(parts.tablename) +
                " which denotes a category that is incompatible with the specified category " +
                quoted(category) + " in the keyword.");
    }
    parts.tablename = tablename;
    return std::nullopt;
}

std::optional<Fault> split_parts(Splitting* split)
{
    const std::string& keyword = split->keyword;
    const std::size_t function = dbif::upper_case(keyword).find(kFunction);
    const std::size_t dot = keyword.find('.');
    if (function != std::string::npos) {
        if (auto fault = split_function_form(function + kFunction.size(), split)) {
            return fault;
        }
    } else if (dot != std::string::npos) {
        split_dotted_form(dot, split);
    } else {
        split->parts.keyname = keyword;
    }
    return split->parts.tablename.empty() ? std::nullopt : resolve_table(split);
}
} // namespace

KeyAttributes split_attributes(const std::string& attributes)
{
    const std::string text = normalised(attributes);
    const std::size_t bar = text.find('|');
    if (bar == std::string::npos) {
        return {text, {}};
    }
    return {dbif::trimmed(text.substr(0, bar)), dbif::trimmed(text.substr(bar + 1))};
}

SplitKeyword split_keyword(const std::string& keyword)
{
    const std::string trimmed = dbif::trimmed(keyword);
    Splitting splitting{trimmed, {}, {}};
    std::optional<Fault> fault = split_parts(&splitting);
    if (fault.has_value()) {
        fault->source = keyword;
        fault->position += static_cast<std::size_t>(trimmed_view(keyword).data() - keyword.data());
    }
    return {std::move(splitting.parts), std::move(fault)};
}

std::string function_form(
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
} // namespace dbapi
