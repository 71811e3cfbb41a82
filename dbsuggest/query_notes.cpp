#include "dbsuggest/query_notes.h"

#include "dbsuggest/masked_text.h"
#include "dbsuggest/query_rewriting.h"
#include "dbsuggest/term_rewriting.h"
#include "dbsuggest/value_rewriting.h"

#include <algorithm>
#include <optional>

namespace dbapi {
namespace {
constexpr std::size_t kMostNotes = 5;

/// The tree of a query string; nothing for one with a fault.
std::optional<QueryTree> read_query(const std::string& query)
{
    try {
        QueryTree tree = parse_query(query);
        if (tree.root != nullptr && find_syntax_fault(*tree.root) == nullptr) {
            return tree;
        }
    } catch (const FaultError&) { // NOLINT(bugprone-empty-catch): nothing to note
    }
    return std::nullopt;
}

QueryNote note_on_ignored(const QueryTree& tree, const IgnoredText& ignored)
{
    QueryNote note{ignored.position, ignored.length, why_ignored(ignored.reason), {}};
    if (ignored.reason == IgnoredText::Reason::BehindEmptyGroup) {
        return note;
    }
    if (const auto right = rewrite_connector(tree.query.substr(ignored.position, ignored.length))) {
        note.text += " " + right->reason;
        note.corrected = tree.query;
        note.corrected.replace(ignored.position, ignored.length, right->text);
    }
    return note;
}

void correct_term(
    const QueryTree& tree,
    const QueryNode& term,
    const std::optional<Rewriting>& rewriting,
    QueryNote* note)
{
    if (rewriting.has_value()) {
        note->text += (note->text.empty() ? "" : " ") + rewriting->reason;
        if (!rewriting->text.empty()) {
            note->corrected = with_rewritten_term(tree, place_of_term(tree, term), *rewriting);
        }
    }
}

std::optional<QueryNote> note_on_term(const QueryTree& tree, const QueryNode& term)
{
    if (term.kind == QueryNode::Kind::BareTerm) {
        const auto rewriting = rewrite_term(term.text);
        QueryNote note{term.position, term.text.size(), "All of this is taken for a keyword.", {}};
        correct_term(tree, term, rewriting, &note);
        return rewriting.has_value() ? std::optional(note) : std::nullopt;
    }
    if (term.kind != QueryNode::Kind::Term) {
        return std::nullopt;
    }
    QueryNote note{term.valuePosition, term.value.size(), {}, {}};
    if (find_second_term(masked_text(term.value)) != std::string_view::npos) {
        note.text = "All of this is taken for one value.";
        const auto rewriting = rewrite_term(place_of_term(tree, term).text);
        note.text += rewriting.has_value() ? "" : " In single quotes it is meant as it stands.";
        correct_term(tree, term, rewriting, &note);
        return note;
    }
    const bool isEquality = term.comparator == EQUAL || term.comparator == NOT_EQUAL;
    if (isEquality && has_wild_card(term.value)) {
        Rewriting range = rewrite_wild_card(term.keyword, term.value);
        if (term.comparator == NOT_EQUAL || place_of_term(tree, term).position != term.position) {
            range.text.clear();
        }
        correct_term(tree, term, range, &note);
        return note;
    }
    return std::nullopt;
}

/// The first notes, with corrections that are not yet checked.
std::vector<QueryNote> find_notes(const std::string& query)
{
    std::vector<QueryNote> notes;
    const std::optional<QueryTree> tree = read_query(query);
    if (!tree.has_value()) {
        return notes;
    }
    for (const IgnoredText& ignored : tree->ignored) {
        if (notes.size() < kMostNotes) {
            notes.push_back(note_on_ignored(*tree, ignored));
        }
    }
    std::size_t onTerms = 0;
    for (const QueryNode* leaf : leaves_of(*tree)) {
        if (onTerms == kMostNotes) {
            break;
        }
        if (auto note = note_on_term(*tree, *leaf)) {
            notes.push_back(std::move(*note));
            ++onTerms;
        }
    }
    std::stable_sort(notes.begin(), notes.end(), [](const QueryNote& a, const QueryNote& b) {
        return a.position < b.position;
    });
    notes.resize(std::min(notes.size(), kMostNotes));
    return notes;
}

/// The query string without any note left, from one that has lost its first; empty where that
/// cannot be reached.
std::string without_notes(std::string query)
{
    constexpr int kMostRounds = 10;
    for (int round = 0; round < kMostRounds && !query.empty(); ++round) {
        const std::vector<QueryNote> notes = find_notes(query);
        if (notes.empty()) {
            return read_query(query).has_value() ? query : std::string();
        }
        query = notes.front().corrected;
    }
    return {};
}
} // namespace

std::vector<QueryNote> notes_on_query(const std::string& query)
{
    std::vector<QueryNote> notes = find_notes(query);
    for (QueryNote& note : notes) {
        note.corrected = without_notes(note.corrected);
    }
    return notes;
}

std::string why_ignored(IgnoredText::Reason reason)
{
    return reason == IgnoredText::Reason::BehindGroup
               ? "It is ignored: behind a closing brace, only \";\", AND or OR joins what follows."
               : "It is ignored: {} selects everything, whatever stands behind it.";
}
} // namespace dbapi
