#include "dbsuggest/term_rewriting.h"

#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/comparison_rewriting.h"
#include "dbsuggest/masked_text.h"
#include "dbsuggest/value_rewriting.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace dbapi {
namespace {
constexpr const char* kBraces =
    "AND and OR join what stands in braces; outside of them, \";\" joins.";
constexpr const char* kCapitals = "AND, OR and NOT are written in capitals.";
constexpr const char* kList = "One of several values is written KEY=a,b and a range KEY=[Min,Max].";
constexpr const char* kNot = "NOT stands in capitals before a keyword in function form.";

constexpr std::string_view kComparing = "=<>";

/// Longer terms are not rewritten: a part may hold a part, and each is copied.
constexpr std::size_t kLongestTerm = 2000;

/// A word or sign that joins terms, where it stands.
struct Joint
{
    std::size_t position = std::string::npos;
    std::size_t length = 0;
    bool isAnd = true;
    bool isSmall = false;
};

bool is_end_of_word(std::string_view text, std::size_t at)
{
    return at >= text.size() || text[at] == kMasked || text[at] == '{' || text[at] == '}' ||
           std::isspace(static_cast<unsigned char>(text[at])) != 0;
}

/// Tells whether a word in upper case stands at a place, in any letter case.
bool has_word(std::string_view text, std::size_t at, std::string_view word)
{
    return (at == 0 || is_end_of_word(text, at - 1)) && is_end_of_word(text, at + word.size()) &&
           dbif::upper_case(text.substr(at, word.size())) == word;
}

Joint joint_at(std::string_view text, std::size_t at)
{
    for (const bool isAnd : {true, false}) {
        const std::string_view word = isAnd ? "AND" : "OR";
        if (has_word(text, at, word)) {
            return {at, word.size(), isAnd, text.substr(at, word.size()) != word};
        }
        const std::string_view sign = isAnd ? "&&" : "||";
        if (text.substr(at, 2) == sign) {
            return {at, 2, isAnd, false};
        }
        if (has_word(text, at, sign.substr(1))) {
            return {at, 1, isAnd, false};
        }
    }
    return {};
}

Joint next_joint(std::string_view masked, std::size_t from)
{
    for (std::size_t at = from; at < masked.size(); ++at) {
        const Joint joint = joint_at(masked, at);
        if (joint.length > 0) {
            return joint;
        }
    }
    return {};
}

/// A term between joints.
struct Part
{
    std::string text;
    /// Joins it to the part before it.
    Joint joint;
};

std::vector<Part> split_at_joints(const std::string& term)
{
    const std::string masked = masked_text(term);
    std::vector<Part> parts;
    Joint before;
    for (std::size_t begin = 0;;) {
        const Joint next = next_joint(masked, begin);
        const std::size_t end = std::min(next.position, term.size());
        parts.push_back(
            {std::string(trimmed_view(std::string_view(term).substr(begin, end - begin))), before});
        if (next.length == 0) {
            return parts;
        }
        before = next;
        begin = next.position + next.length;
    }
}

bool is_group(const std::string& text)
{
    return text.size() > 2 && text.front() == '{' &&
           masked_text(text).find_first_not_of(kMasked) == std::string::npos;
}

/// "W not in (1u,2u)": a list.
Rewriting rewrite_list(std::string keyword, const std::string& values)
{
    const bool isNegated = dbif::upper_case(keyword).ends_with(" NOT");
    if (isNegated) {
        keyword = dbif::trimmed(keyword.substr(0, keyword.size() - 3));
    }
    const bool isBracketed = values.size() > 2 && (values.front() == '(' || values.front() == '{');
    return {
        kList, keyword + (isNegated ? "!=" : "=") +
                   (isBracketed ? values.substr(1, values.size() - 2) : values)};
}

std::optional<Rewriting>
rewrite_word(const std::string& keyword, std::string_view word, const std::string& behind)
{
    if (word == "IN") {
        return rewrite_list(keyword, behind);
    }
    if (word == "LIKE") {
        return rewrite_wild_card(keyword, behind);
    }
    const std::vector<Part> bounds = split_at_joints(behind);
    if (bounds.size() != 2) {
        return std::nullopt;
    }
    return Rewriting{kList, keyword + "=[" + bounds[0].text + "," + bounds[1].text + "]"};
}

/// "W in (1u,2u)", "W between 1u and 2u", "W like 'a%'": words in the place of a comparator.
std::optional<Rewriting> rewrite_words(const std::string& term)
{
    const std::string masked = masked_text(term);
    for (std::size_t at = 1; at < masked.size(); ++at) {
        for (const std::string_view word : {"IN", "BETWEEN", "LIKE"}) {
            if (has_word(masked, at, word)) {
                return rewrite_word(
                    dbif::trimmed(term.substr(0, at)), word,
                    dbif::trimmed(term.substr(at + word.size())));
            }
        }
    }
    return std::nullopt;
}

/// "(L=1u OR L=2u)", and not the parentheses of a keyword in function form.
bool is_parenthesised(const std::string& text)
{
    return text.size() > 2 && text.front() == '(' &&
           masked_text(text).find_first_not_of(kMasked) == std::string::npos &&
           text.find_first_of(kComparing) != std::string::npos;
}

bool compares(const std::string& text)
{
    return is_group(text) || is_parenthesised(text) ||
           masked_text(text).find_first_of(kComparing) != std::string::npos ||
           (dbif::upper_case(text).starts_with("NOT") && text.ends_with('}')) ||
           rewrite_words(text).has_value();
}

/// What a part is in the query, between braces.
std::string in_braces(const std::string& part)
{
    if (is_group(part)) {
        return part;
    }
    if (is_parenthesised(part)) {
        return in_braces(part.substr(1, part.size() - 2));
    }
    const auto rewritten = rewrite_term(part);
    return "{" + (rewritten && !rewritten->text.empty() ? rewritten->text : part) + "}";
}

/// "W=5u OR 6u": a list of values.
std::optional<Rewriting> join_values(const std::vector<Part>& parts)
{
    const bool isList = std::all_of(parts.begin() + 1, parts.end(), [](const Part& part) {
        return !part.joint.isAnd && !part.text.empty() && !compares(part.text);
    });
    if (!isList || parts.front().text.find('=') == std::string::npos ||
        is_group(parts.front().text)) {
        return std::nullopt;
    }
    Rewriting list{kList, parts.front().text};
    for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
        list.text += "," + part->text;
    }
    return list;
}

/// "a=1 AND b=2 OR c=3", as other languages read it: AND binds more tightly than OR.
std::optional<Rewriting> join_parts(const std::vector<Part>& parts)
{
    const bool areTerms = std::all_of(
        parts.begin(), parts.end(), [](const Part& part) { return compares(part.text); });
    if (!areTerms) {
        return join_values(parts);
    }
    const bool hasOr = std::any_of(
        parts.begin() + 1, parts.end(), [](const Part& part) { return !part.joint.isAnd; });
    const bool isSmall = std::any_of(
        parts.begin() + 1, parts.end(), [](const Part& part) { return part.joint.isSmall; });
    Rewriting joined{isSmall ? std::string(kCapitals) + " " + kBraces : kBraces, {}, true};
    for (std::size_t begin = 0; begin < parts.size();) {
        std::size_t end = begin + 1;
        std::string all = in_braces(parts[begin].text);
        for (; end < parts.size() && parts[end].joint.isAnd; ++end) {
            all += " AND " + in_braces(parts[end].text);
        }
        const bool isNested = hasOr && end - begin > 1;
        joined.text += (begin == 0 ? "" : " OR ") + (isNested ? "{" + all + "}" : all);
        begin = end;
    }
    return joined;
}

/// A keyword in function form, before which NOT may stand.
std::string in_function_form(const std::string& keyword)
{
    if (dbif::upper_case(keyword).find("KEY(") != std::string::npos) {
        return keyword;
    }
    const SplitKeyword split = split_keyword(keyword);
    const KeyAttributes attributes = split_attributes(split.parts.attributes);
    std::string form = function_form(
        split.parts.keyname, split.parts.tablename,
        convert_to_full_datatype_name(attributes.datatype),
        convert_to_full_category_name(attributes.category));
    return "KEY" + form.substr(3);
}

/// "NOT W=5u", "not {W=5u}", "NOT{W=5u;L=1u}".
std::optional<Rewriting> rewrite_negation(const std::string& term)
{
    if (dbif::upper_case(std::string_view(term).substr(0, 3)) != "NOT" || term.size() < 5 ||
        (term[3] != ' ' && term[3] != '{')) {
        return std::nullopt;
    }
    std::string operand = dbif::trimmed(term.substr(3));
    if (is_group(operand)) {
        operand = dbif::trimmed(operand.substr(1, operand.size() - 2));
    }
    const auto inner = rewrite_term(operand);
    if (inner && !inner->isCompound && !inner->text.empty()) {
        operand = inner->text;
    }
    const std::size_t comparator = operand.find_first_of("=<>!");
    if (comparator == 0 || comparator == std::string::npos) {
        return std::nullopt;
    }
    const std::string keyword = dbif::trimmed(operand.substr(0, comparator));
    return Rewriting{kNot, "NOT " + in_function_form(keyword) + operand.substr(comparator), true};
}
} // namespace

std::optional<Rewriting> rewrite_term(const std::string& term)
{
    if (term.size() > kLongestTerm) {
        return std::nullopt;
    }
    const auto words = masked_text(term).find_first_of(kComparing) == std::string::npos
                           ? rewrite_words(term)
                           : std::nullopt;
    if (words.has_value()) {
        return words;
    }
    const std::vector<Part> parts = split_at_joints(term);
    if (parts.size() > 1) {
        return join_parts(parts);
    }
    if (auto negation = rewrite_negation(term)) {
        return negation;
    }
    return rewrite_comparison(term);
}

std::size_t find_second_term(std::string_view masked)
{
    const std::size_t comparator = masked.find_first_of(kComparing);
    for (Joint joint = next_joint(masked, 0); joint.length > 0;
         joint = next_joint(masked, joint.position + joint.length)) {
        const bool isWord = std::isalpha(static_cast<unsigned char>(masked[joint.position])) != 0;
        const bool isFollowed = comparator != std::string_view::npos && comparator > joint.position;
        if (joint.position > 0 && ((isWord && !joint.isSmall) || isFollowed)) {
            return std::min(joint.position, comparator);
        }
    }
    return comparator;
}

std::optional<Rewriting> rewrite_connector(const std::string& text)
{
    const std::string masked = masked_text(text);
    if (masked.front() == kMasked || text.front() == '{') {
        return Rewriting{kBraces, "AND " + text};
    }
    const Joint joint = joint_at(masked, 0);
    if (joint.length == 0) {
        return std::nullopt;
    }
    return Rewriting{
        joint.isSmall ? kCapitals : kBraces,
        (joint.isAnd ? "AND " : "OR ") + dbif::trimmed(text.substr(joint.length))};
}
} // namespace dbapi
