#pragma once

#include "dbif/condition/query_enums.h"
#include "dbif/engine/sql_dialect.h"

#include <string>
#include <string_view>
#include <vector>

namespace dbif {
/// The numbers that satisfy a comparison: disjoint closed ranges in ascending order. An open end is
/// the neighbouring double; no end is an infinity, which no stored number equals.
using NumberRanges = std::vector<NumberRange>;

/// The ranges of a comparator with its values (one, or several for `IN` and `NOT_IN`). Values
/// within the relative distance `tolerance` are equal; zero equals only zero. `NOT_NULL` is the
/// range of all numbers, `IS_NULL` no range.
NumberRanges ranges_of(Comparator comparator, const std::vector<double>& values, double tolerance);

/// All numbers that are in none of the ranges.
NumberRanges complement(const NumberRanges& ranges);

/// All numbers that are in one of `a` and in one of `b`.
NumberRanges intersection(const NumberRanges& a, const NumberRanges& b);

/// Tells whether a number lies in one of the ranges. NaN lies in none.
bool contains(const NumberRanges& ranges, double number);

/// The SQL condition that `column`, a column or expression, lies in one of the ranges. No
/// parentheses around.
SqlText
ranges_condition(const SqlText& column, const NumberRanges& ranges, const SqlDialect& dialect);

/// The SQL condition that the closed range from column `minimum` to column `maximum` meets one of
/// the ranges.
SqlText bounds_condition(const NumberRanges& ranges, const SqlDialect& dialect);
} // namespace dbif
