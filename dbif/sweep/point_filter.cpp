#include "dbif/sweep/point_filter.h"

#include <span>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

bool holds_at(const ColumnComparison& comparison, const SweepSlice& values, std::size_t point)
{
    if (comparison.comparator == IS_NULL) {
        return !values.hasValue(point);
    }
    return !comparison.holdsNumbers && values.hasValue(point) &&
           comparison.holdsFor(values.text(point));
}

/// The ranges are tried one by one, which a processor does for several points at once; a long list
/// of ranges is searched.
void mark_numbers(const NumberRanges& ranges, std::span<const double> numbers, PointMask* mask)
{
    constexpr std::size_t kFewRanges = 8;
    if (ranges.size() > kFewRanges) {
        for (std::size_t point = 0; point < numbers.size(); ++point) {
            (*mask)[point] = contains(ranges, numbers[point]) ? 1 : 0;
        }
        return;
    }
    for (const NumberRange& range : ranges) {
        for (std::size_t point = 0; point < numbers.size(); ++point) {
            const bool isWithin = numbers[point] >= range.low && numbers[point] <= range.high;
            (*mask)[point] |= static_cast<std::uint8_t>(isWithin);
        }
    }
}

PointMask
decide_comparison(const ColumnComparison& comparison, std::size_t points, const SweepSlice& values)
{
    if (!values.isPresent()) {
        return PointMask(points, comparison.comparator == IS_NULL ? 1 : 0);
    }
    PointMask mask(points);
    if (comparison.holdsNumbers && comparison.comparator != IS_NULL &&
        values.array->kind == ValueKind::Double) {
        mark_numbers(comparison.ranges, values.numbers(), &mask);
        return mask;
    }
    for (std::size_t point = 0; point < points; ++point) {
        mask[point] = holds_at(comparison, values, point) ? 1 : 0;
    }
    return mask;
}
} // namespace

PointMask satisfying_points(
    const ConditionTree& condition,
    std::size_t points,
    const std::function<SweepSlice(const ColumnComparison&)>& valuesOf,
    const std::function<bool(const ColumnComparison&)>& holdsForRecord)
{
    switch (condition.kind()) {
    case Kind::True:
        return PointMask(points, 1);
    case Kind::False:
        return PointMask(points, 0);
    case Kind::Comparison:
        if (condition.comparison().isOnPoints()) {
            return decide_comparison(
                condition.comparison(), points, valuesOf(condition.comparison()));
        }
        return PointMask(points, holdsForRecord(condition.comparison()) ? 1 : 0);
    case Kind::And:
    case Kind::Or:
        break;
    }
    const bool isAnd = condition.kind() == Kind::And;
    PointMask mask(points, isAnd ? 1 : 0);
    for (const ConditionTree& operand : condition.operands()) {
        const PointMask other = satisfying_points(operand, points, valuesOf, holdsForRecord);
        for (std::size_t point = 0; point < points; ++point) {
            mask[point] = isAnd ? mask[point] & other[point] : mask[point] | other[point];
        }
    }
    return mask;
}
} // namespace dbif
