#include "dbapi/query/value_list.h"

#include "dbapi/words/text_rules.h"

#include <string_view>
#include <vector>

namespace dbapi {
namespace {
bool opens_quote(std::string_view piece)
{
    return piece.front() == '\'' && piece.back() != '\'';
}

bool closes_quote(std::string_view piece)
{
    return piece.front() != '\'' && piece.back() == '\'';
}

/// Appends to `value` the pieces from `*at` up to the one that closes the quote, and moves `*at`
/// behind it. False when none does, or another quote opens before.
bool append_to_closing_quote(
    const std::vector<std::string>& pieces,
    std::size_t* at,
    std::string* value)
{
    for (; *at < pieces.size(); ++*at) {
        const std::string_view piece = trimmed_view(pieces[*at]);
        if (!piece.empty() && piece.front() == '\'') {
            return false;
        }
        *value += "," + pieces[*at];
        if (!piece.empty() && closes_quote(piece)) {
            ++*at;
            return true;
        }
    }
    return false;
}

/// Takes the value that begins with the trimmed `piece`, and moves `*at` behind its last piece.
/// False for a mismatched quote.
bool take_value(
    std::string_view piece,
    const std::vector<std::string>& pieces,
    std::size_t* at,
    std::string* value)
{
    *value = piece;
    if (closes_quote(piece)) {
        return false;
    }
    if (opens_quote(piece)) {
        return append_to_closing_quote(pieces, at, value);
    }
    if (piece.front() != '\'') {
        *value = "'" + *value + "'";
    }
    return true;
}
} // namespace

ValueList split_value_list(const std::string& value)
{
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, value, ',');
    ValueList list;
    for (std::size_t at = 0; at < pieces.size();) {
        const std::string_view piece = trimmed_view(pieces[at++]);
        if (piece.empty()) {
            continue;
        }
        std::string taken;
        if (!take_value(piece, pieces, &at, &taken)) {
            return {{}, 0, true};
        }
        list.joined += taken;
        // A separator also follows the last value when only blank pieces remain.
        list.joined += at < pieces.size() ? ", " : "";
        ++list.count;
    }
    return list;
}

ListComparison
compare_with_list(const std::string& joined, std::size_t count, Comparator comparator)
{
    const std::string values = without_quotes(joined);
    if (!values.empty() && count >= 2) {
        return {comparator == EQUAL ? IN : NOT_IN, values};
    }
    return {comparator, without_quotes(values)};
}

bool is_range(const std::string& value)
{
    return !value.empty() && value.front() == '[' && value.back() == ']';
}

bool split_range(const std::string& value, std::string* minimum, std::string* maximum)
{
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, value.substr(1, value.size() - 2), ',');
    const bool isValid =
        pieces.size() == 2 && !trimmed_view(pieces[0]).empty() && !trimmed_view(pieces[1]).empty();
    *minimum = isValid ? pieces[0] : std::string();
    *maximum = isValid ? pieces[1] : std::string();
    return isValid;
}

std::string without_quotes(const std::string& text)
{
    if (text.empty() || text.front() != '\'' || text.back() != '\'') {
        return text;
    }
    return text.size() < 2 ? std::string() : text.substr(1, text.size() - 2);
}

std::string mismatched_quote_message(
    const std::string& piece,
    const std::string& keyword,
    const std::string& value,
    Comparator comparator)
{
    return "Query string " + quoted(piece) +
           " has an invalid value specified.\nThe term: " + quoted(keyword) +
           "'s specified value: " + quoted(value) + " after the " +
           (comparator == EQUAL ? "EQUALS" : "NOT EQUALS") +
           " operator, has a mismatched single quote ' character.\n";
}

std::string invalid_range_message(
    const std::string& piece,
    const std::string& keyword,
    const std::string& value)
{
    return "Query string " + quoted(piece) +
           " has an invalid '=[Min,Max]' value specifier.\nThe term: " + quoted(keyword) +
           "'s specified '=[Min,Max]' value " + quoted(value) +
           ", requires a declared Min and Max value seperated by a comma ','.\n";
}
} // namespace dbapi
