#include "dbsuggest/fault_advice.h"

#include "dbapi/db_listing.h"
#include "dbapi/query/query_condition.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/exception.h"
#include "dbsuggest/nearest_text.h"
#include "dbsuggest/query_notes.h"
#include "dbsuggest/query_rewriting.h"
#include "dbsuggest/term_rewriting.h"
#include "dbsuggest/value_rewriting.h"

#include <algorithm>
#include <optional>
#include <set>

namespace dbapi {
namespace {
/// The number of faults of one query that are put right, one after another.
constexpr int kMostRounds = 10;

constexpr const char* kEmptied =
    "A keyword is missing here. Between double quotes the shell replaces \"$LOT\" and the like by "
    "nothing: write single quotes around keywords and queries, '$LOT=S130'.";
constexpr const char* kJoined = "\";\", AND and OR stand between two terms, and nowhere else.";
constexpr const char* kUnclosed = "Each open brace has a closing one.";
constexpr const char* kBuiltin = "A builtin keyname stands alone, without table and attributes.";

constexpr std::size_t kMostTables = 2;

std::set<std::string> table_names()
{
    std::set<std::string> names;
    db_get_tablenames(&names);
    return names;
}

std::string replaced(const Fault& fault, const std::string& text)
{
    std::string source = fault.source;
    return source.replace(fault.position, fault.length, text);
}

/// The term that a fault is in; null when it is in none.
const QueryNode* faulty_term(const QueryTree& tree, const Fault& fault)
{
    for (const QueryNode* leaf : leaves_of(tree)) {
        if (leaf->position <= fault.position &&
            fault.position <= leaf->position + leaf->text.size()) {
            return leaf;
        }
    }
    return nullptr;
}

/// The whole term, with a value that is rewritten.
std::optional<Rewriting> rewrite_value(const Fault& fault, const QueryNode& term)
{
    if (term.kind != QueryNode::Kind::Term || fault.position < term.valuePosition) {
        return std::nullopt;
    }
    if (fault.kind != Fault::Kind::MalformedRange && has_wild_card(term.value)) {
        return rewrite_wild_card(term.keyword, term.value);
    }
    auto value = rewrite_number_value(term.value, term.comparator);
    if (value.has_value() && value->text != term.value) {
        value->text = term.text.substr(0, term.valuePosition - term.position) + value->text;
        return value;
    }
    return std::nullopt;
}

/// The rewriting of the faulty term.
std::optional<Advice> advice_on_term(const Fault& fault)
{
    const QueryTree tree = parse_query(fault.source);
    const QueryNode* term = faulty_term(tree, fault);
    if (term == nullptr) {
        return std::nullopt;
    }
    TermPlace place = place_of_term(tree, *term);
    auto rewriting = rewrite_term(place.text);
    if (!rewriting.has_value()) {
        place = {term->position, term->text};
        rewriting = rewrite_value(fault, *term);
    }
    if (!rewriting.has_value()) {
        return std::nullopt;
    }
    return Advice{
        rewriting->reason,
        {},
        rewriting->text.empty() ? std::string() : with_rewritten_term(tree, place, *rewriting)};
}

/// Without the connector before or behind the place where a term is missing.
std::vector<Advice> advice_on_missing_term(const Fault& fault)
{
    const std::string_view query = fault.source;
    const std::string_view before = trimmed_view(query.substr(0, fault.position));
    std::vector<Advice> advice;
    for (const std::string_view connector : {";", "AND", "OR"}) {
        if (before.ends_with(connector)) {
            const auto end = static_cast<std::size_t>(before.data() - query.data()) + before.size();
            std::string shorter = fault.source;
            shorter.erase(end - connector.size(), fault.position - end + connector.size());
            advice.push_back({kJoined, {}, std::string(trimmed_view(shorter))});
        }
    }
    if (fault.position < query.size() && query[fault.position] == ';') {
        std::string shorter = fault.source;
        shorter.erase(fault.position, 1);
        advice.push_back({kJoined, {}, std::string(trimmed_view(shorter))});
    }
    return advice;
}

/// Advice that is not yet checked.
std::vector<Advice> proposals_for(const Fault& fault, const KnownKeys& keys)
{
    using Kind = Fault::Kind;
    std::vector<std::string> keywords;
    switch (fault.kind) {
    case Kind::EmptyKeyword:
        return {{kEmptied, {}, {}}};
    case Kind::EmptyQuery:
        return advice_on_missing_term(fault);
    case Kind::UnbalancedBraces:
        return {{kUnclosed, {}, fault.source + "}"}};
    case Kind::QualifiedBuiltin:
        return {
            {kBuiltin,
             {},
             replaced(fault, split_keyword(std::string(fault.piece())).parts.keyname)}};
    case Kind::AmbiguousKey:
        keywords = fault.candidates;
        break;
    case Kind::MalformedKeyword:
        // A misspelt table is the one word of a keyword that can be told from all right ones.
        keywords = nearest_texts(std::string(fault.piece()), table_names(), kMostTables);
        break;
    case Kind::UnknownKey:
        if (trimmed_view(fault.piece()).empty()) {
            return {{kEmptied, {}, {}}};
        }
        keywords = keys.near(std::string(fault.piece()));
        break;
    default:
        break;
    }
    if (fault.where == Fault::Where::Query && fault.kind != Kind::MisplacedCommand) {
        if (const auto advice = advice_on_term(fault)) {
            return {*advice};
        }
    }
    std::vector<Advice> advice;
    for (const std::string& keyword : keywords) {
        advice.push_back({{}, keyword, replaced(fault, keyword)});
    }
    return advice;
}

/// The fault of a query string; nothing when the library reads it.
std::optional<Fault> fault_of(const KnownKeys& keys, const std::string& query)
{
    DBIF_Connection connection = keys.connection();
    try {
        build_condition(connection, query);
        return std::nullopt;
    } catch (const FaultError& error) {
        return error.fault();
    } catch (const DBIF_Exception&) {
        return Fault();
    }
}

/// The query string with its other faults put right, too; empty where that cannot be done without a
/// choice.
std::string completed(const KnownKeys& keys, std::string query)
{
    for (int round = 0; round < kMostRounds && !query.empty(); ++round) {
        const std::optional<Fault> fault = fault_of(keys, query);
        if (!fault.has_value()) {
            return notes_on_query(query).empty() ? query : std::string();
        }
        if (fault->where != Fault::Where::Query || fault->kind == Fault::Kind::AmbiguousKey) {
            return {};
        }
        const std::vector<Advice> proposals = proposals_for(*fault, keys);
        query = proposals.empty() ? std::string() : proposals.front().corrected;
    }
    return {};
}

/// Tells whether the first fault of a query that has lost one stands behind the place of that.
bool is_one_better(const KnownKeys& keys, const Fault& fault, const std::string& query)
{
    const std::optional<Fault> next = fault_of(keys, query);
    return next.has_value() && next->position > fault.position;
}

bool is_keyword(const KnownKeys& keys, const std::string& keyword)
{
    DBIF_Connection connection = keys.connection();
    return resolve_keyword(connection, keyword, nullptr, true).isFound();
}
} // namespace

std::vector<Advice> advice_for(const Fault& fault, const KnownKeys& keys)
{
    std::vector<Advice> checked;
    if (fault.where == Fault::Where::Nowhere) {
        return checked;
    }
    for (Advice& advice : proposals_for(fault, keys)) {
        const std::string proposed = advice.corrected;
        if (fault.where == Fault::Where::Query) {
            advice.corrected = completed(keys, proposed);
        } else if (!is_keyword(keys, proposed)) {
            advice.corrected.clear();
        }
        const bool isUseful =
            !advice.corrected.empty() || !advice.reason.empty() ||
            (fault.where == Fault::Where::Query && is_one_better(keys, fault, proposed));
        const bool isNew = std::none_of(checked.begin(), checked.end(), [&](const Advice& other) {
            return !advice.reason.empty() && other.reason == advice.reason &&
                   (advice.corrected.empty() || other.corrected == advice.corrected);
        });
        if (isUseful && isNew) {
            checked.push_back(std::move(advice));
        }
    }
    return checked;
}
} // namespace dbapi
