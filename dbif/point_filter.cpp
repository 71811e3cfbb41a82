#include "dbif/point_filter.h"

#include <algorithm>
#include <cmath>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

bool holds_at(const ColumnComparison& comparison, const SweepArray& array, std::size_t point)
{
    if (comparison.comparator == IS_NULL) {
        return !array.hasValue(point);
    }
    if (!array.hasValue(point)) {
        return false;
    }
    if (comparison.holdsNumbers) {
        return array.kind == ValueKind::Double && contains(comparison.ranges, array.numbers[point]);
    }
    return comparison.holdsFor(array.text(point));
}

PointMask decide_comparison(
    const ColumnComparison& comparison,
    std::size_t points,
    const std::map<std::string, SweepArray>& arrays)
{
    const auto found = arrays.find(comparison.column);
    if (found == arrays.end() || found->second.size() == 0) {
        return PointMask(points, comparison.comparator == IS_NULL ? 1 : 0);
    }
    PointMask mask(points);
    const std::size_t known = std::min(points, found->second.size());
    for (std::size_t point = 0; point < known; ++point) {
        mask[point] = holds_at(comparison, found->second, point) ? 1 : 0;
    }
    return mask;
}
} // namespace

PointMask satisfying_points(
    const ConditionTree& condition,
    std::size_t points,
    const std::map<std::string, SweepArray>& arrays,
    const std::function<bool(const ColumnComparison&)>& holdsForRecord)
{
    switch (condition.kind()) {
    case Kind::True:
        return PointMask(points, 1);
    case Kind::False:
        return PointMask(points, 0);
    case Kind::Comparison:
        if (condition.comparison().isOnPoints()) {
            return decide_comparison(condition.comparison(), points, arrays);
        }
        return PointMask(points, holdsForRecord(condition.comparison()) ? 1 : 0);
    case Kind::And:
    case Kind::Or:
        break;
    }
    const bool isAnd = condition.kind() == Kind::And;
    PointMask mask(points, isAnd ? 1 : 0);
    for (const ConditionTree& operand : condition.operands()) {
        const PointMask other = satisfying_points(operand, points, arrays, holdsForRecord);
        for (std::size_t point = 0; point < points; ++point) {
            mask[point] = isAnd ? mask[point] & other[point] : mask[point] | other[point];
        }
    }
    return mask;
}
} // namespace dbif
