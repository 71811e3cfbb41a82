#include "dbexplain/nothing_found.h"

#include "dbapi/words/text_rules.h"
#include "dbexplain/query_explanation.h"
#include "dbexplain/stored_values.h"
#include "dbsuggest/display_text.h"

#include <algorithm>

namespace dbapi {
namespace {
using Kind = QueryNode::Kind;

/// Terms that are named; a query may have any number that keep nothing.
constexpr std::size_t kMostNamedTerms = 5;
/// Terms of an AND that are left out one by one to see what the others keep.
constexpr std::size_t kMostLeftOut = 20;

bool keeps_nothing(const NodeExplanation& node)
{
    return node.alone.has_value() && node.alone->records == 0;
}

std::string shown(const NodeExplanation& node)
{
    const bool isJoined = node.kind == Kind::And || node.kind == Kind::Or;
    std::string text = isJoined ? "the braces that begin with " + shown(node.operands.front())
                                : dbapi::quoted(node.text);
    return node.kind == Kind::Not ? "NOT " + shown(node.operands.front()) : text;
}

/// Looks for the parts of a query because of which nothing is left.
class CauseFinder
{
public:
    CauseFinder(const DBIF_Connection& connection, const Explanation& explanation)
        : explanation_(explanation), counter_(connection, explanation.table, explanation.latestOnly)
    {}

    void examine(const NodeExplanation& node)
    {
        switch (node.kind) {
        case Kind::And:
            examineAnd(node);
            return;
        case Kind::Or:
            for (const NodeExplanation& operand : node.operands) {
                examine(operand);
            }
            return;
        case Kind::Not:
            found_.reasons.push_back(
                shown(node) + " keeps nothing: wherever there is a value to compare, what it "
                              "negates holds. (What has no value is kept by neither.)");
            return;
        case Kind::BareTerm:
            found_.reasons.push_back(
                shown(node) + " is false: it names no key, or several. Write " +
                dbapi::quoted("{KEY=VALUE}") + " to compare one.");
            return;
        default:
            examineTerm(node);
        }
    }

    NothingFound take()
    {
        if (termCount_ > kMostNamedTerms) {
            found_.reasons.push_back(
                "So do " + std::to_string(termCount_ - kMostNamedTerms) + " more terms.");
        }
        return std::move(found_);
    }

private:
    void examineTerm(const NodeExplanation& node)
    {
        if (++termCount_ > kMostNamedTerms) {
            return;
        }
        found_.reasons.push_back(shown(node) + " keeps nothing, even by itself.");
        if (const KeyExplanation* key = explanation_.keyOf(node.keyword)) {
            const std::string text = stored_values_text(
                explanation_.connection, *key, node.value, explanation_.latestOnly);
            if (!text.empty()) {
                found_.suggestions.push_back(text);
            }
        }
    }

    void examineAnd(const NodeExplanation& node)
    {
        bool isFound = false;
        for (const NodeExplanation& operand : node.operands) {
            if (keeps_nothing(operand)) {
                examine(operand);
                isFound = true;
            }
        }
        if (!isFound) {
            examineConflict(node);
        }
    }

    /// Each part keeps something, but not the same.
    void examineConflict(const NodeExplanation& node)
    {
        const auto conflicting = std::find_if(
            node.operands.begin(), node.operands.end(), [](const NodeExplanation& operand) {
                return operand.soFar.has_value() && operand.soFar->records == 0;
            });
        if (conflicting == node.operands.end() || conflicting == node.operands.begin()) {
            return;
        }
        const auto before = conflicting - 1;
        const bool isSecond = before == node.operands.begin();
        found_.reasons.push_back(
            shown(*conflicting) + " keeps " + records(conflicting->alone->records) +
            " by itself, but none of the " + records(before->soFar->records) + " that " +
            (isSecond ? shown(*before) + " keeps" : "the terms before it keep together") + ".");
        const bool hasPointsBefore =
            std::any_of(node.operands.begin(), conflicting, [](const NodeExplanation& operand) {
                return operand.isOnPoints;
            });
        if (conflicting->isOnPoints && hasPointsBefore) {
            found_.reasons.emplace_back("Conditions on points hold for one point at a time: no "
                                        "single point satisfies them all.");
        }
        leaveOut(node);
    }

    /// The condition of an AND's operands but one.
    static std::shared_ptr<const DBIF_QueryCondition>
    others(const NodeExplanation& node, const NodeExplanation& left)
    {
        std::shared_ptr<const DBIF_QueryCondition> all;
        for (const NodeExplanation& operand : node.operands) {
            if (&operand != &left) {
                all = all == nullptr ? operand.condition : both(all.get(), operand.condition.get());
            }
        }
        return all;
    }

    void leaveOut(const NodeExplanation& node)
    {
        if (node.operands.size() > kMostLeftOut) {
            return;
        }
        for (const NodeExplanation& left : node.operands) {
            const std::size_t count = counter_.count(others(node, left).get()).records;
            if (count > 0) {
                found_.suggestions.push_back(
                    "Without " + shown(left) + ", " + records(count) +
                    (count == 1 ? " is left." : " are left."));
            }
        }
    }

    [[nodiscard]] std::string records(std::size_t count) const
    {
        return records_text(count, explanation_.table);
    }

    const Explanation& explanation_;
    RecordCounter counter_;
    NothingFound found_;
    std::size_t termCount_ = 0;
};

/// The records are there, but have no value.
std::string without_values(const Explanation& explanation)
{
    const bool isQuery = explanation.tree.has_value();
    return (isQuery ? "The query keeps " : "There are ") +
           records_text(explanation.keptRecords(), explanation.table) +
           ", but none has a value of " + listed(explanation.keywords, " or ") + ".";
}
} // namespace

NothingFound explain_nothing(const DBIF_Connection& connection, const Explanation& explanation)
{
    NothingFound nothing;
    if (explanation.read.rows > 0) {
        return nothing;
    }
    if (explanation.records == 0) {
        nothing.reasons.push_back(
            "The database has no " + records_text(2, explanation.table).substr(2) + " at all.");
        nothing.cause = NothingFound::Cause::NoRecords;
        return nothing;
    }
    if (!explanation.tree.has_value() || !keeps_nothing(*explanation.tree)) {
        nothing.reasons.push_back(without_values(explanation));
        nothing.cause = NothingFound::Cause::NoValues;
        return nothing;
    }
    if (!explanation.tree->isCountedInParts()) {
        nothing.cause = NothingFound::Cause::Query;
        nothing.reasons.emplace_back(
            "The query has too many parts to count each of them. Explain some of them by "
            "themselves.");
        return nothing;
    }
    CauseFinder finder(connection, explanation);
    finder.examine(*explanation.tree);
    nothing = finder.take();
    nothing.cause = NothingFound::Cause::Query;
    if (explanation.latestOnly) {
        RecordCounter all(connection, explanation.table, false);
        const std::size_t count = all.count(explanation.tree->condition.get()).records;
        if (count > 0) {
            nothing.suggestions.push_back(
                "With \"ALLDATA:\" in front, " + records_text(count, explanation.table) +
                (count == 1 ? " that was superseded is found."
                            : " that were superseded are found."));
        }
    }
    return nothing;
}
} // namespace dbapi
