#include "dbif/condition/condition_simplification.h"

#include <algorithm>
#include <map>
#include <span>
#include <tuple>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

bool compares_ranges(const ConditionTree& part)
{
    return part.kind() == Kind::Comparison && part.comparison().holdsNumbers &&
           part.comparison().comparator != IS_NULL && !part.comparison().ids.has_value();
}

bool is_always_true(const ColumnComparison& comparison, RecordTable base)
{
    return comparison.column.isIdOf(base) && comparison.comparator == NOT_NULL;
}

/// Tells whether comparisons with these texts, joined by that kind, are one comparison with a list.
bool compares_list(const ConditionTree& part, Kind kind)
{
    if (part.kind() != Kind::Comparison || part.comparison().holdsNumbers ||
        part.comparison().ids.has_value()) {
        return false;
    }
    const Comparator comparator = part.comparison().comparator;
    return kind == Kind::Or ? comparator == EQUAL || comparator == IN
                            : comparator == NOT_EQUAL || comparator == NOT_IN;
}

/// Intersects half by half, so that many ranges are not walked again for each part.
NumberRanges intersected(std::span<const NumberRanges> parts)
{
    if (parts.size() == 1) {
        return parts.front();
    }
    const std::size_t half = parts.size() / 2;
    return intersection(intersected(parts.first(half)), intersected(parts.subspan(half)));
}

using Group = std::vector<const ColumnComparison*>;

/// One comparison for the whole group, with a comparator that compares by ranges.
ColumnComparison joined_ranges(const Group& group, Kind kind)
{
    std::vector<NumberRanges> ranges;
    ColumnComparison joined = *group.front();
    joined.comparator = IN;
    for (const ColumnComparison* comparison : group) {
        if (comparison->comparator != NOT_NULL) {
            ranges.push_back(
                kind == Kind::And ? comparison->ranges : complement(comparison->ranges));
        } else if (kind == Kind::Or) {
            return *comparison;
        }
    }
    if (ranges.empty()) {
        return *group.front();
    }
    joined.ranges = kind == Kind::And ? intersected(ranges) : complement(intersected(ranges));
    return joined;
}

ColumnComparison joined_texts(const Group& group, Kind kind)
{
    ColumnComparison joined = *group.front();
    joined.comparator = kind == Kind::Or ? IN : NOT_IN;
    joined.texts.clear();
    for (const ColumnComparison* comparison : group) {
        joined.texts.insert(joined.texts.end(), comparison->texts.begin(), comparison->texts.end());
    }
    std::sort(joined.texts.begin(), joined.texts.end());
    joined.texts.erase(std::unique(joined.texts.begin(), joined.texts.end()), joined.texts.end());
    return joined;
}

ConditionTree with_one_comparison_each(Kind kind, const std::vector<ConditionTree>& operands)
{
    std::map<std::pair<RecordTable, std::string_view>, std::size_t> placeOf;
    std::vector<ConditionTree> parts;
    std::vector<Group> groups;
    for (const ConditionTree& operand : operands) {
        if (!compares_ranges(operand) && !compares_list(operand, kind)) {
            parts.push_back(operand);
            groups.emplace_back();
            continue;
        }
        const ColumnComparison& comparison = operand.comparison();
        const auto [place, isNew] = placeOf.emplace(
            std::pair(comparison.column.table(), comparison.column.uniqueName()), parts.size());
        if (isNew) {
            parts.push_back(operand);
            groups.emplace_back();
        }
        groups[place->second].push_back(&comparison);
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (groups[i].size() > 1) {
            const bool isOfNumbers = groups[i].front()->holdsNumbers;
            parts[i] = ConditionTree::comparison(
                isOfNumbers ? joined_ranges(groups[i], kind) : joined_texts(groups[i], kind));
        }
    }
    return ConditionTree::joined(kind, parts);
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
    return with_one_comparison_each(condition.kind(), operands);
}
} // namespace dbif
