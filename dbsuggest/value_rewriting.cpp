#include "dbsuggest/value_rewriting.h"

#include "dbapi/query/value_list.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <vector>

namespace dbapi {
namespace {
constexpr const char* kNoUnit = "A number may have a scale letter (1.5u), but no unit.";
constexpr const char* kNoComma = "Decimals stand behind a point; commas separate values.";
constexpr const char* kRange = "A range is written [Min,Max].";
constexpr const char* kNoWildCard =
    "There is no wild card: compare with a list of values (KEY=a,b) or a range of texts "
    "(KEY=[a,b]).";

/// Longer texts are no numbers that somebody typed, and each beginning is tried.
constexpr std::size_t kLongestNumber = 50;

bool is_number(std::string_view text)
{
    return std::isfinite(dbif::read_engineering_number(text));
}

/// Blanks within a number left out, and the Greek letter of micro written as the scale letter.
std::string compact(std::string_view text)
{
    std::string number(text);
    for (const std::string_view micro : {"\u00b5", "\u03bc"}) {
        for (std::size_t at = number.find(micro); at != std::string::npos;
             at = number.find(micro)) {
            number.replace(at, micro.size(), "u");
        }
    }
    std::erase(number, ' ');
    return number;
}

bool is_unit(std::string_view text)
{
    static const std::set<std::string, std::less<>> kUnits{
        "A", "C", "DEG", "DEGC", "EV", "F",   "H", "HZ",   "\u00b0", "\u00b0C", "\u2103",
        "K", "M", "OHM", "OHMS", "S",  "SEC", "V", "VOLT", "W",      "\u03a9",  "\u2126"};
    return kUnits.contains(dbif::upper_case(text));
}

/// The number in front of a unit.
std::optional<std::string> without_unit(std::string_view text)
{
    const std::string number = text.size() > kLongestNumber ? std::string() : compact(text);
    for (std::size_t length = number.size(); length > 0; --length) {
        const std::string_view front = std::string_view(number).substr(0, length);
        const std::string_view unit = std::string_view(number).substr(length);
        if (!is_number(front) || !(unit.empty() || is_unit(unit))) {
            continue;
        }
        // In "1MHz" and "1MOhm" the letter is mega, which M alone is not.
        const bool isMega = front.back() == 'M' && unit.size() > 1;
        return std::string(front) + (isMega ? "EG" : "");
    }
    return std::nullopt;
}

/// The pieces between separators, trimmed; nothing when one is empty.
std::vector<std::string> pieces_of(std::string_view text, std::string_view separator)
{
    std::vector<std::string> pieces;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        const std::string_view piece = trimmed_view(text.substr(begin, end - begin));
        if (piece.empty()) {
            return {};
        }
        pieces.emplace_back(piece);
        begin = end + separator.size();
    }
    return pieces;
}

/// The numbers "a,b" of which each stands with or without a unit; nothing when one is no number.
std::optional<std::string> plain_numbers(const std::vector<std::string>& pieces)
{
    std::string list;
    for (const std::string& piece : pieces) {
        const auto number = without_unit(without_quotes(piece));
        if (!number.has_value()) {
            return std::nullopt;
        }
        list += (list.empty() ? "" : ",") + *number;
    }
    return list.empty() ? std::nullopt : std::optional(list);
}

/// "0" and "5u" of "0,5u".
bool are_halves(const std::string& whole, const std::string& decimals)
{
    const std::size_t digits = whole.find_first_not_of("+-");
    return digits != std::string::npos &&
           whole.find_first_not_of("0123456789", digits) == std::string::npos &&
           std::isdigit(static_cast<unsigned char>(decimals.front())) != 0 && is_number(decimals);
}

/// The bounds of "[a..b]", "[a:b]", "[a b]" or "[0,5u,1,5u]".
std::optional<Rewriting> rewrite_range(const std::string& inner)
{
    const std::vector<std::string> bounds = pieces_of(inner, ",");
    if (bounds.size() == 4 && are_halves(bounds[0], bounds[1]) &&
        are_halves(bounds[2], bounds[3])) {
        return Rewriting{
            kNoComma, "[" + bounds[0] + "." + bounds[1] + "," + bounds[2] + "." + bounds[3] + "]"};
    }
    if (bounds.size() == 2) {
        const auto numbers = plain_numbers(bounds);
        return numbers ? std::optional(Rewriting{kNoUnit, "[" + *numbers + "]"}) : std::nullopt;
    }
    for (const char* separator : {"..", ":", " "}) {
        const std::vector<std::string> two = pieces_of(inner, separator);
        const auto numbers = plain_numbers(two);
        if (two.size() == 2 && numbers.has_value()) {
            return Rewriting{kRange, "[" + *numbers + "]"};
        }
    }
    return std::nullopt;
}

/// A pattern's beginning, for one that is a beginning and a wild card.
std::string beginning_of(std::string_view pattern)
{
    const std::size_t end = pattern.find_first_of("*%?");
    const bool isLast = end != std::string_view::npos && end > 0 &&
                        pattern.find_first_not_of("*%", end) == std::string_view::npos;
    return isLast ? std::string(trimmed_view(pattern.substr(0, end))) : std::string();
}
} // namespace

std::optional<Rewriting> rewrite_number_value(const std::string& value, Comparator comparator)
{
    if (is_range(value)) {
        return rewrite_range(value.substr(1, value.size() - 2));
    }
    const std::vector<std::string> pieces = pieces_of(value, ",");
    const bool isOrdering = comparator != EQUAL && comparator != NOT_EQUAL;
    if (isOrdering && pieces.size() == 2 && are_halves(pieces[0], pieces[1])) {
        return Rewriting{kNoComma, pieces[0] + "." + pieces[1]};
    }
    if (comparator == EQUAL && pieces.size() == 1 && value.find("..") != std::string::npos) {
        return rewrite_range(value);
    }
    const auto numbers = plain_numbers(pieces);
    return numbers ? std::optional(Rewriting{kNoUnit, *numbers}) : std::nullopt;
}

bool has_wild_card(const std::string& value)
{
    const std::vector<std::string> pieces = pieces_of(value, ",");
    return std::any_of(pieces.begin(), pieces.end(), [](const std::string& piece) {
        const std::string text = without_quotes(piece);
        if (text.empty()) {
            return false;
        }
        const bool isPercentage =
            text.back() == '%' && text.size() > 1 &&
            std::isdigit(static_cast<unsigned char>(text[text.size() - 2])) != 0;
        return text.front() == '*' || text.front() == '%' || text.back() == '*' ||
               (text.back() == '%' && !isPercentage);
    });
}

Rewriting rewrite_wild_card(const std::string& keyword, const std::string& pattern)
{
    const std::string low = beginning_of(without_quotes(pattern));
    // The last letter's successor ends the range; a letter at the end of ASCII has none.
    if (low.empty() || static_cast<unsigned char>(low.back()) >= 0x7e) {
        return {kNoWildCard, {}};
    }
    std::string high = low;
    ++high.back();
    return {kNoWildCard, keyword + ">=" + low + ";" + keyword + "<" + high, true};
}
} // namespace dbapi
