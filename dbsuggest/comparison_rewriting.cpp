#include "dbsuggest/comparison_rewriting.h"

#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/masked_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

namespace dbapi {
namespace {
constexpr const char* kOneComparator = "A term has one comparator, behind the keyword.";
constexpr const char* kComparators = "The comparators are =, !=, <>, <, <=, > and >=.";

/// A term taken apart at its comparators, doubled and turned ones included.
struct Comparison
{
    std::vector<std::string> pieces;
    std::vector<std::string> comparators;
};

Comparison split_at_comparators(const std::string& term)
{
    const std::string masked = masked_text(term);
    Comparison split;
    std::size_t begin = 0;
    for (std::size_t at = masked.find_first_of("=<>!"); at != std::string::npos;
         at = masked.find_first_of("=<>!", begin)) {
        split.pieces.push_back(dbif::trimmed(term.substr(begin, at - begin)));
        std::string comparator;
        // "< =" too.
        for (;
             at < masked.size() && std::string_view("=<>! ").find(masked[at]) != std::string::npos;
             ++at) {
            comparator += masked[at] == ' ' ? "" : std::string(1, masked[at]);
        }
        split.comparators.push_back(comparator);
        begin = at;
    }
    split.pieces.push_back(dbif::trimmed(term.substr(std::min(begin, term.size()))));
    return split;
}

/// The comparator that one of other languages is; empty for what is none.
std::string plain_comparator(const std::string& written)
{
    constexpr std::array<std::array<std::string_view, 2>, 14> kSpellings{
        {{"=", "="},
         {"==", "="},
         {"===", "="},
         {"!=", "!="},
         {"!==", "!="},
         {"<>", "<>"},
         {"<", "<"},
         {"<=", "<="},
         {"=<", "<="},
         {"<==", "<="},
         {">", ">"},
         {">=", ">="},
         {"=>", ">="},
         {">==", ">="}}};
    for (const auto& [other, plain] : kSpellings) {
        if (other == written) {
            return std::string(plain);
        }
    }
    return {};
}

std::string mirrored(std::string comparator)
{
    comparator.front() = comparator.front() == '<' ? '>' : '<';
    return comparator;
}

bool is_number(const std::string& text)
{
    return std::isfinite(dbif::read_engineering_number(text));
}

/// "1u<W<5u", "5u>=W>1u".
std::optional<Rewriting> rewrite_bounds(const Comparison& split)
{
    const std::string first = plain_comparator(split.comparators[0]);
    const std::string second = plain_comparator(split.comparators[1]);
    const bool isOrdered = (first == "<" || first == "<=" || first == ">" || first == ">=") &&
                           !second.empty() && second.front() == first.front();
    if (!isOrdered || is_number(split.pieces[1])) {
        return std::nullopt;
    }
    const std::string& keyword = split.pieces[1];
    if (first.size() == 2 && second.size() == 2) {
        const bool isRising = first.front() == '<';
        return Rewriting{
            kOneComparator, keyword + "=[" + split.pieces[isRising ? 0 : 2] + "," +
                                split.pieces[isRising ? 2 : 0] + "]"};
    }
    return Rewriting{
        kOneComparator,
        keyword + mirrored(first) + split.pieces[0] + ";" + keyword + second + split.pieces[2],
        true};
}
} // namespace

std::optional<Rewriting> rewrite_comparison(const std::string& term)
{
    const Comparison split = split_at_comparators(term);
    const bool isWhole = std::none_of(
        split.pieces.begin(), split.pieces.end(), [](const auto& piece) { return piece.empty(); });
    if (!isWhole || split.comparators.empty() || split.comparators.size() > 2) {
        return std::nullopt;
    }
    if (split.comparators.size() == 2) {
        return rewrite_bounds(split);
    }
    const std::string plain = plain_comparator(split.comparators[0]);
    if (plain.empty()) {
        return std::nullopt;
    }
    if (is_number(split.pieces[0]) && !is_number(split.pieces[1])) {
        const bool isOrdering = plain == "<" || plain == "<=" || plain == ">" || plain == ">=";
        return Rewriting{
            kOneComparator,
            split.pieces[1] + (isOrdering ? mirrored(plain) : plain) + split.pieces[0]};
    }
    // As it is written, "< =" is no comparator either.
    const bool isRight = term.find(plain) != std::string::npos && plain == split.comparators[0];
    return isRight
               ? std::nullopt
               : std::optional(Rewriting{kComparators, split.pieces[0] + plain + split.pieces[1]});
}
} // namespace dbapi
