#include "dbif/query/driving_term.h"

#include "dbif/connection/managed_connection.h"
#include "dbif/engine/read_trace.h"
#include "dbif/query/selectivity.h"
#include "dbif/schema/table_graph.h"

#include <algorithm>
#include <set>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

constexpr std::size_t kMostComparisons = 8;
/// Each alternative of an OR costs a count before the query, and a SELECT in it.
constexpr std::size_t kMostAlternatives = 20;
constexpr std::size_t kGreatestDepth = 4;

/// Tells whether the tree compares fixed columns of one table, and nothing else.
bool compares_one_record(const ConditionTree& tree)
{
    std::set<RecordTable> tables;
    bool hasKeys = false;
    tree.forEachComparison([&](const ColumnComparison& comparison) {
        tables.insert(comparison.column.table());
        hasKeys = hasKeys || comparison.column.isKey();
    });
    return tables.size() == 1 && !hasKeys;
}

bool may_drive_as_union(const ConditionTree& tree)
{
    return tree.kind() == Kind::Or && tree.size() <= kMostAlternatives &&
           tree.depth() <= kGreatestDepth && is_found_by_index(tree) && !compares_one_record(tree);
}

/// The places of the operands that may drive.
std::vector<std::size_t> find_candidates(
    const std::vector<ConditionTree>& operands,
    RecordTable base,
    bool isWeighed,
    Selectivity* selectivity)
{
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < operands.size() && candidates.size() < kMostComparisons; ++i) {
        if (operands[i].kind() == Kind::Comparison && may_drive(operands[i].comparison())) {
            candidates.push_back(i);
        }
    }
    if (isWeighed && !candidates.empty()) {
        return {};
    }
    // The operands of an AND have to hold for the same records below the base.
    const TableSet above = with_ancestors(base);
    const auto canStandAlone = [&](const ConditionTree& operand) {
        return operands.size() == 1 || !operand.any([&above](const ColumnComparison& comparison) {
            return !above.has(comparison.column.table());
        });
    };
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (may_drive_as_union(operands[i]) && canStandAlone(operands[i]) &&
            selectivity->selectsFew(operands[i])) {
            candidates.push_back(i);
        }
    }
    return candidates;
}

ConditionTree looked_up(const ConditionTree& tree)
{
    return tree.mapped([](const ConditionTree& comparison) {
        ColumnComparison lookedUp = comparison.comparison();
        lookedUp.isLookedUp = true;
        return ConditionTree::comparison(std::move(lookedUp));
    });
}
} // namespace

ConditionTree with_driving_term(
    const ConditionTree& condition,
    RecordTable base,
    DBIF_Connection& connection,
    const MakeUnion& makeUnion)
{
    if (condition.kind() != Kind::And && condition.kind() != Kind::Or) {
        return condition;
    }
    const TraceStep step(connection.inner().trace(), "find the most selective term");
    const bool isWeighed = connection.inner().dialect().weighsSubSelects();
    std::vector<ConditionTree> operands{condition};
    if (condition.kind() == Kind::And) {
        operands = condition.operands();
    }
    Selectivity selectivity(base, connection);
    const std::vector<std::size_t> candidates =
        find_candidates(operands, base, isWeighed, &selectivity);
    if (candidates.empty()) {
        return condition;
    }
    const std::size_t driver = selectivity.fewest(operands, candidates);
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (i == driver) {
            operands[i] =
                operands[i].kind() == Kind::Or ? makeUnion(operands[i].operands()) : operands[i];
        } else if (!isWeighed) {
            operands[i] = looked_up(operands[i]);
        }
    }
    return ConditionTree::joined(Kind::And, operands);
}
} // namespace dbif
