#include "dbsuggest/query_fault.h"

#include "dbapi/query/query_syntax.h"
#include "dbapi/query/value_list.h"
#include "dbapi/query_terms.h"
#include "dbapi/wall/alldata_command.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace dbapi::tool {
namespace {
/// How many columns are shown before, of and behind the faulty place.
constexpr std::size_t kShownBefore = 50;
constexpr std::size_t kShownFault = 60;
constexpr std::size_t kShownBehind = 30;

/// The place of a piece of a query.
struct Place
{
    std::size_t position;
    std::size_t length;
};

/// The first piece of a value, between commas, that is no number.
std::optional<Place> find_no_number(const QueryNode& term)
{
    const bool isRange = dbapi::is_range(term.value);
    const std::string_view value = term.value;
    const std::string_view list = isRange ? value.substr(1, value.size() - 2) : value;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string_view piece = trimmed_view(list.substr(begin, end - begin));
        const std::string number = without_quotes(std::string(piece));
        if (!piece.empty() && std::isnan(dbif::read_engineering_number(number))) {
            const auto offset = static_cast<std::size_t>(piece.data() - value.data());
            return Place{term.valuePosition + offset, piece.size()};
        }
        begin = end + 1;
    }
    return std::nullopt;
}

/// Whether the number of values does not fit the comparator: none at all, or several in an order.
bool is_number_of_values_wrong(const QueryNode& term)
{
    if (term.comparator == EQUAL || term.comparator == NOT_EQUAL) {
        return !is_range(term.value) && split_value_list(term.value).count == 0;
    }
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, term.value, ',');
    return pieces.size() != 1;
}

bool is_value_misshapen(const QueryNode& term)
{
    std::string minimum;
    std::string maximum;
    if (term.comparator == EQUAL && is_range(term.value)) {
        return !split_range(term.value, &minimum, &maximum);
    }
    const bool isList = term.comparator == EQUAL || term.comparator == NOT_EQUAL;
    return isList ? split_value_list(term.value).isMismatched : term.value.empty();
}

std::optional<Place> find_value_fault(const QueryNode& term, dbif::ValueKind kind)
{
    const Place whole{term.valuePosition, term.value.size()};
    const bool isOrdered = (term.comparator != EQUAL && term.comparator != NOT_EQUAL) ||
                           (term.comparator == EQUAL && is_range(term.value));
    switch (kind) {
    case dbif::ValueKind::Double:
        if (term.value.empty()) {
            return whole;
        }
        if (const std::optional<Place> place = find_no_number(term)) {
            return place;
        }
        if (is_number_of_values_wrong(term)) {
            return whole;
        }
        break;
    case dbif::ValueKind::Complex:
    case dbif::ValueKind::Matrix:
        if (isOrdered) {
            return whole;
        }
        break;
    case dbif::ValueKind::Text:
        break;
    }
    return is_value_misshapen(term) ? std::optional(whole) : std::nullopt;
}

/// Walks the terms from left to right, as the library does, up to the one that it complained about.
class FaultFinder
{
public:
    FaultFinder(KnownKeys& keys, const std::string& query, const std::string& message)
        : keys_(keys), query_(query), message_(message)
    {}

    /// `offset` is where the text of the tree begins in the query.
    std::optional<QueryFault> find(const QueryNode& node, std::size_t offset)
    {
        if (node.kind == QueryNode::Kind::Term) {
            return findInTerm(node, offset);
        }
        for (const auto& operand : node.operands) {
            if (std::optional<QueryFault> fault = find(*operand, offset)) {
                return fault;
            }
        }
        return std::nullopt;
    }

private:
    std::optional<QueryFault> findInTerm(const QueryNode& term, std::size_t offset)
    {
        const std::optional<dbif::ValueKind> kind = keys_.kindOf(term.keyword);
        if (kind.has_value()) {
            const std::optional<Place> place = find_value_fault(term, *kind);
            return place ? std::optional(
                               QueryFault{query_, offset + place->position, place->length, {}})
                         : std::nullopt;
        }
        if (message_.find(dbapi::quoted(term.keyword)) == std::string::npos) {
            return std::nullopt;
        }
        return QueryFault{
            query_, offset + term.keywordPosition, term.keyword.size(), meantBy(term, offset)};
    }

    [[nodiscard]] std::vector<std::string> meantBy(const QueryNode& term, std::size_t offset) const
    {
        const std::size_t position = offset + term.keywordPosition;
        const bool isNegated = position >= 2 && query_.compare(position - 2, 3, "NOT") == 0;
        if (isNegated && (term.keyword.starts_with("T ") || term.keyword.starts_with("T{"))) {
            // "NOT {W=5u}": braces do not help.
            std::string name = term.keyword.substr(1);
            std::erase(name, '{');
            return {"NOT KEY(" + dbif::trimmed(name) + ")"};
        }
        return keys_.near(term.keyword);
    }

    KnownKeys& keys_;
    const std::string& query_;
    const std::string& message_;
};

/// The last part of a text that takes at most `width` columns.
std::string display_suffix(const std::string& text, std::size_t width)
{
    const std::size_t whole = display_width(text);
    return whole <= width ? text
                          : "..." + text.substr(display_prefix(text, whole - width + 3).size());
}
} // namespace

std::optional<QueryFault>
find_query_fault(KnownKeys& keys, const std::string& query, const std::string& message)
{
    const std::string_view trimmed = trimmed_view(query);
    std::string rest;
    std::string error;
    if (!dbapi_found_and_removed_alldata_condition_from_query_str(query, &rest, nullptr, &error)) {
        if (!error.empty()) {
            return QueryFault{query, dbif::upper_case(query).find("ALLDATA"), 7, {}};
        }
        rest = std::string(trimmed);
    }
    if (rest.empty()) {
        return std::nullopt;
    }
    const auto trimmedEnd =
        static_cast<std::size_t>(trimmed.data() - query.data()) + trimmed.size();
    const std::size_t offset = trimmedEnd - rest.size();
    const std::unique_ptr<QueryNode> tree = parse_query_syntax(rest, false);
    if (const QueryNode* fault = find_syntax_error(*tree)) {
        return QueryFault{query, offset + fault->position, fault->text.size(), {}};
    }
    return FaultFinder(keys, query, message).find(*tree, offset);
}

std::optional<QueryFault> find_keyword_fault(KnownKeys& keys, const std::string& keyword)
{
    if (keys.kindOf(keyword).has_value()) {
        return std::nullopt;
    }
    return QueryFault{keyword, 0, keyword.size(), keys.near(keyword)};
}

std::string fault_lines(const QueryFault& fault)
{
    const std::string_view text = fault.text;
    if (trimmed_view(text).empty()) {
        return {};
    }
    const std::string before =
        display_suffix(display_text(text.substr(0, fault.position)), kShownBefore);
    const std::string faulty(
        display_prefix(display_text(text.substr(fault.position, fault.length)), kShownFault));
    const std::string behind = display_text(text.substr(fault.position + fault.length));
    const std::string shownBehind(display_prefix(behind, kShownBehind));
    const bool isCut = shownBehind.size() < behind.size();
    const std::string mark(std::max<std::size_t>(display_width(faulty), 1), '^');
    std::string lines = "  " + before + faulty + shownBehind + (isCut ? "..." : "") + "\n  " +
                        std::string(display_width(before), ' ') + mark;
    const std::string meant = suggestion(fault.suggestions);
    return meant.empty() ? lines : lines + "\n" + meant.substr(1);
}
} // namespace dbapi::tool
