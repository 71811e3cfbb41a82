#include "dbapi/query/engineering_values.h"

#include "dbapi/query/value_list.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace dbapi {
namespace {
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNumberCharacters = "0123456789.+-EAFPNUMXKGT";

std::string syntax_error(const std::string& value, const std::string& complaint)
{
    return "Query String Syntax Error: The specified query value " + quoted(value) + complaint +
           "\n";
}

/// The message for a wrong number of values; empty when it is right.
std::string find_count_fault(const std::string& value, int expectedCount, std::size_t count)
{
    if (expectedCount < 1 || static_cast<std::size_t>(expectedCount) == count) {
        return {};
    }
    if (expectedCount == 1) {
        return syntax_error(value, " does not represent a single real double value.");
    }
    const std::string expected = expectedCount == 2 ? "two" : std::to_string(expectedCount);
    return syntax_error(
        value, " does not represent " + expected + " real comma delimited double values.");
}

/// The message for one of the values in `value`; empty when it is written as a number is.
std::string find_number_fault(const std::string& value, std::string_view piece)
{
    if (piece.empty()) {
        return syntax_error(
            value, " contains an empty string which does not represent a real double value.");
    }
    if ((piece.front() == '\'') != (piece.back() == '\'')) {
        return syntax_error(
            value,
            " contains a value string which has mis-matched single quotes \"'\"', or a comma seperator in between "
            "a matching pair of single quotes.\n"
            "Could not parse value to convert value string to a real double value.");
    }
    const std::string number = without_quotes(std::string(piece));
    if (number.find('\'') != std::string::npos) {
        return syntax_error(
            value,
            " contains a value string which has single \"'\"' quotes in an improper location.\n"
            "Could not parse value to convert value string to a real double value.");
    }
    if (!has_characters_of_number(number)) {
        return syntax_error(
            value, " contains a value string " + quoted(number) +
                       " which could not be parsed as a real double value.");
    }
    return {};
}
} // namespace

bool has_characters_of_number(const std::string& text)
{
    const std::string upper = dbif::upper_case(text);
    return upper.find_first_not_of(kNumberCharacters) == std::string::npos &&
           upper.find_first_of(kDigits) != std::string::npos;
}

ConvertedValues convert_values(const std::string& value, int expectedCount)
{
    using Fault = ConvertedValues::Fault;
    const std::string trimmed = dbif::trimmed(value);
    if (trimmed.empty()) {
        return {
            Fault::WrongCount, syntax_error(value, " does not represent a real double value."),
            false};
    }
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, trimmed, ',');
    std::string fault = find_count_fault(value, expectedCount, pieces.size());
    if (!fault.empty()) {
        return {Fault::WrongCount, std::move(fault), false};
    }
    ConvertedValues converted{Fault::None, {}, true};
    for (const std::string& untrimmed : pieces) {
        const std::string_view piece = trimmed_view(untrimmed);
        fault = find_number_fault(value, piece);
        if (!fault.empty()) {
            return {Fault::NoNumber, std::move(fault), false};
        }
        const std::string number = without_quotes(std::string(piece));
        const double read = enot_to_dbl(number.c_str());
        converted.hasOnlyNumbers = converted.hasOnlyNumbers && std::isfinite(read);
        const std::string quote = piece.front() == '\'' ? "'" : "";
        converted.text +=
            (converted.text.empty() ? "" : ", ") + quote + dbif::double_text(read) + quote;
    }
    return converted;
}

TextPlace place_of_no_number(const std::string& value)
{
    const std::string_view whole = value;
    const std::string_view list = is_range(value) ? whole.substr(1, whole.size() - 2) : whole;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string_view piece = trimmed_view(list.substr(begin, end - begin));
        const std::string number = without_quotes(std::string(piece));
        if (!piece.empty() && !std::isfinite(dbif::read_engineering_number(number))) {
            return {static_cast<std::size_t>(piece.data() - whole.data()), piece.size()};
        }
        begin = end + 1;
    }
    return {0, value.size()};
}
} // namespace dbapi
