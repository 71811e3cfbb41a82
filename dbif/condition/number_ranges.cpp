#include "dbif/condition/number_ranges.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace dbif {
namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
/// As many ranges stand in the statement itself; more go into a table of their own, which an index
/// on the column serves and which keeps the statement shallow.
constexpr std::size_t kMostInlineRanges = 16;

double above(double number)
{
    return std::nextafter(number, kInfinity);
}

double below(double number)
{
    return std::nextafter(number, -kInfinity);
}

NumberRange band(double value, double tolerance)
{
    const double reach = std::abs(value) * tolerance;
    return {value - reach, value + reach};
}

void add_if_not_empty(double low, double high, NumberRanges* ranges)
{
    // No number lies beyond the largest.
    if (low <= high && low < kInfinity && high > -kInfinity) {
        ranges->push_back({low, high});
    }
}

NumberRanges from_to(double low, double high)
{
    NumberRanges ranges;
    add_if_not_empty(low, high, &ranges);
    return ranges;
}

/// The same numbers between ends that can be written as numbers.
NumberRanges with_finite_ends(NumberRanges ranges)
{
    constexpr double kLargest = std::numeric_limits<double>::max();
    for (NumberRange& range : ranges) {
        range.low = std::max(range.low, -kLargest);
        range.high = std::min(range.high, kLargest);
    }
    return ranges;
}

NumberRanges merge_overlapping(NumberRanges ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const NumberRange& a, const NumberRange& b) {
        return a.low < b.low;
    });
    NumberRanges result;
    for (const NumberRange& range : ranges) {
        if (!result.empty() && range.low <= result.back().high) {
            result.back().high = std::max(result.back().high, range.high);
        } else {
            result.push_back(range);
        }
    }
    return result;
}

NumberRanges equal_to_any(const std::vector<double>& values, double tolerance)
{
    NumberRanges ranges;
    ranges.reserve(values.size());
    for (const double value : values) {
        ranges.push_back(band(value, tolerance));
    }
    return merge_overlapping(std::move(ranges));
}
} // namespace

NumberRanges ranges_of(Comparator comparator, const std::vector<double>& values, double tolerance)
{
    const NumberRange first = values.empty() ? NumberRange{0, 0} : band(values.front(), tolerance);
    switch (comparator) {
    case EQUAL:
    case IN:
        return equal_to_any(values, tolerance);
    case NOT_EQUAL:
    case NOT_IN:
        return complement(equal_to_any(values, tolerance));
    case LESS:
        return from_to(-kInfinity, below(first.low));
    case LESS_EQUAL:
        return from_to(-kInfinity, first.high);
    case GREATER:
        return from_to(above(first.high), kInfinity);
    case GREATER_EQUAL:
        return from_to(first.low, kInfinity);
    case NOT_NULL:
        return from_to(-kInfinity, kInfinity);
    case IS_NULL:
        break;
    }
    return {};
}

NumberRanges complement(const NumberRanges& ranges)
{
    NumberRanges result;
    double low = -kInfinity;
    for (const NumberRange& range : ranges) {
        if (range.low > -kInfinity) {
            add_if_not_empty(low, below(range.low), &result);
        }
        if (range.high == kInfinity) {
            return result;
        }
        low = above(range.high);
    }
    add_if_not_empty(low, kInfinity, &result);
    return result;
}

NumberRanges intersection(const NumberRanges& a, const NumberRanges& b)
{
    NumberRanges result;
    auto inA = a.begin();
    auto inB = b.begin();
    while (inA != a.end() && inB != b.end()) {
        add_if_not_empty(std::max(inA->low, inB->low), std::min(inA->high, inB->high), &result);
        ++(inA->high < inB->high ? inA : inB);
    }
    return result;
}

bool contains(const NumberRanges& ranges, double number)
{
    // A comparison, and mostly a range, has few; lists are searched.
    const auto after = std::upper_bound(
        ranges.begin(), ranges.end(), number,
        [](double n, const NumberRange& range) { return n < range.low; });
    return after != ranges.begin() && number <= std::prev(after)->high;
}

SqlText
ranges_condition(const SqlText& column, const NumberRanges& ranges, const SqlDialect& dialect)
{
    SqlText sql;
    if (ranges.empty()) {
        return SqlText("1 = 0");
    }
    if (ranges.size() > kMostInlineRanges) {
        return sql << "EXISTS (SELECT 1 FROM " << dialect.rangeTable(with_finite_ends(ranges))
                   << " AS ranges WHERE " << column << " BETWEEN ranges.low AND ranges.high)";
    }
    for (const NumberRange& range : ranges) {
        sql << (sql.isEmpty() ? SqlText() : SqlText(" OR ")) << column;
        if (range.low == -kInfinity && range.high == kInfinity) {
            sql << " IS NOT NULL";
        } else if (range.low == -kInfinity) {
            sql << " <= " << range.high;
        } else if (range.high == kInfinity) {
            sql << " >= " << range.low;
        } else if (range.low == range.high) {
            sql << " = " << range.low;
        } else {
            sql << " BETWEEN " << range.low << " AND " << range.high;
        }
    }
    return sql;
}

SqlText bounds_condition(const NumberRanges& ranges, const SqlDialect& dialect)
{
    SqlText sql;
    if (ranges.empty()) {
        return SqlText("1 = 0");
    }
    if (ranges.size() > kMostInlineRanges) {
        return sql << "EXISTS (SELECT 1 FROM " << dialect.rangeTable(with_finite_ends(ranges))
                   << " AS ranges WHERE minimum <= ranges.high AND maximum >= ranges.low)";
    }
    for (const NumberRange& range : ranges) {
        sql << (sql.isEmpty() ? SqlText("(") : SqlText(" OR ("));
        if (range.low == -kInfinity && range.high == kInfinity) {
            sql << "minimum IS NOT NULL";
        } else if (range.low == -kInfinity) {
            sql << "minimum <= " << range.high;
        } else if (range.high == kInfinity) {
            sql << "maximum >= " << range.low;
        } else {
            sql << "minimum <= " << range.high << " AND maximum >= " << range.low;
        }
        sql << ")";
    }
    return sql;
}
} // namespace dbif
