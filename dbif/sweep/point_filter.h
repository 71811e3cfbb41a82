#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/sweep/sweep_slice.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace dbif {
/// A mark for each point of a setup: 1 when it satisfies a condition.
using PointMask = std::vector<std::uint8_t>;

/// Decides a condition on the points of one setup. Comparisons on setup keys are decided point by
/// point on the values that `valuesOf` gives (a key that the setup does not have fails), every
/// other one by `holdsForRecord`.
PointMask satisfying_points(
    const ConditionTree& condition,
    std::size_t points,
    const std::function<SweepSlice(const ColumnComparison&)>& valuesOf,
    const std::function<bool(const ColumnComparison&)>& holdsForRecord);
} // namespace dbif
