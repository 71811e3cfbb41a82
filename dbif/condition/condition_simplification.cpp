#include "dbif/condition/condition_simplification.h"

#include <map>
#include <tuple>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

bool compares_ranges(const ConditionTree& part)
{
    return part.kind() == Kind::Comparison && part.comparison().holdsNumbers &&
           part.comparison().comparator != IS_NULL && !part.comparison().idSelect.has_value();
}

bool is_always_true(const ColumnComparison& comparison, RecordTable base)
{
    return comparison.table == base && !comparison.isKey && comparison.column == "id" &&
           comparison.comparator == NOT_NULL;
}

/// The comparison for both ranges. Its comparator is one that compares with ranges.
ColumnComparison intersected(const ColumnComparison& a, const ColumnComparison& b)
{
    ColumnComparison both = a.comparator == NOT_NULL ? b : a;
    if (a.comparator != NOT_NULL && b.comparator != NOT_NULL) {
        both.comparator = IN;
        both.ranges = intersection(a.ranges, b.ranges);
    }
    return both;
}

ConditionTree with_one_comparison_each(const std::vector<ConditionTree>& operands)
{
    std::map<std::tuple<RecordTable, bool, std::string>, std::size_t> placeOf;
    std::vector<ConditionTree> parts;
    for (const ConditionTree& operand : operands) {
        if (!compares_ranges(operand)) {
            parts.push_back(operand);
            continue;
        }
        const ColumnComparison& comparison = operand.comparison();
        const auto [place, isNew] = placeOf.emplace(
            std::tuple(comparison.table, comparison.isKey, comparison.column), parts.size());
        if (isNew) {
            parts.push_back(operand);
        } else {
            ConditionTree& earlier = parts[place->second];
            earlier = ConditionTree::comparison(intersected(earlier.comparison(), comparison));
        }
    }
    return ConditionTree::joined(Kind::And, parts);
}
} // namespace

ConditionTree simplified(const ConditionTree& condition, RecordTable base)
{
    if (condition.kind() == Kind::Comparison) {
        return is_always_true(condition.comparison(), base) ? ConditionTree::constant(true)
                                                            : condition;
    }
    if (condition.isConstant()) {
        return condition;
    }
    std::vector<ConditionTree> operands = condition.operands();
    for (ConditionTree& operand : operands) {
        operand = simplified(operand, base);
    }
    return condition.kind() == Kind::And ? with_one_comparison_each(operands)
                                         : ConditionTree::joined(Kind::Or, operands);
}
} // namespace dbif
