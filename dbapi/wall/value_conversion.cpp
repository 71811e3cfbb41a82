#include "dbapi/wall/value_conversion.h"

#include "dbapi/query/value_list.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_number.h"

#include <string_view>
#include <vector>

namespace {
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNumberCharacters = "0123456789.+-EAFPNUMXKGT";

std::string syntax_error(const std::string& value, const std::string& complaint)
{
    return "Query String Syntax Error: The specified query value " + dbapi::quoted(value) +
           complaint + "\n";
}

/// What is wrong with the number of values; empty when nothing is.
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

/// Converts one of the values in `value`. False, with the message in `error`, when it is no number.
bool convert_piece(
    const std::string& value,
    std::string_view piece,
    std::string* converted,
    std::string* error)
{
    if (piece.empty()) {
        *error = syntax_error(
            value, " contains an empty string which does not represent a real double value.");
        return false;
    }
    if ((piece.front() == '\'') != (piece.back() == '\'')) {
        *error = syntax_error(
            value,
            " contains a value string which has mis-matched single quotes \"'\"', or a comma seperator in between "
            "a matching pair of single quotes.\n"
            "Could not parse value to convert value string to a real double value.");
        return false;
    }
    const std::string number = dbapi::without_quotes(std::string(piece));
    if (number.find('\'') != std::string::npos) {
        *error = syntax_error(
            value,
            " contains a value string which has single \"'\"' quotes in an improper location.\n"
            "Could not parse value to convert value string to a real double value.");
        return false;
    }
    if (!string_has_valid_enot_to_dbl_chars(number)) {
        *error = syntax_error(
            value, " contains a value string " + dbapi::quoted(number) +
                       " which could not be parsed as a real double value.");
        return false;
    }
    const std::string quote = piece.front() == '\'' ? "'" : "";
    *converted = quote + dbif::double_text(enot_to_dbl(number.c_str())) + quote;
    return true;
}

bool convert_values(
    const std::string& value,
    int expectedCount,
    std::string* converted,
    std::string* error)
{
    const std::string trimmed = dbif::trimmed(value);
    if (trimmed.empty()) {
        *error = syntax_error(value, " does not represent a real double value.");
        return false;
    }
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, trimmed, ',');
    *error = find_count_fault(value, expectedCount, pieces.size());
    if (!error->empty()) {
        return false;
    }
    std::string separator;
    for (const std::string& piece : pieces) {
        std::string number;
        if (!convert_piece(value, dbapi::trimmed_view(piece), &number, error)) {
            return false;
        }
        *converted += separator + number;
        separator = ", ";
    }
    return true;
}
} // namespace

bool convert_value_str_to_proper_value_double_str(
    const std::string& value,
    int expectedCount,
    std::string* converted,
    KTString* errors)
{
    std::string numbers;
    std::string error;
    const bool isValid = convert_values(value, expectedCount, &numbers, &error);
    *converted = isValid ? numbers : std::string();
    *errors = error;
    return isValid;
}

bool string_has_valid_enot_to_dbl_chars(const std::string& text)
{
    const std::string upper = dbif::upper_case(text);
    return upper.find_first_not_of(kNumberCharacters) == std::string::npos &&
           upper.find_first_of(kDigits) != std::string::npos;
}
