#pragma once

#include "dbif/value/complex_values.h"
#include "dbif/value/data_type.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// One column of a setup in memory: a value per point. NaN, in complex numbers a NaN real part, in
/// matrices no rows, in texts `isMissing` is 'no value'.
struct SweepArray
{
    ValueKind kind = ValueKind::Double;
    std::vector<double> numbers;
    std::vector<std::complex<double>> complexNumbers;
    std::vector<ComplexMatrix> matrices;
    std::vector<std::optional<std::string>> texts;

    void clear();
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool hasValue(std::size_t point) const;
    /// The value at a point as text; empty when there is none.
    [[nodiscard]] std::string text(std::size_t point) const;
};

/// The arrays of one setup, by the unique key of their column. A column that the setup does not
/// have is not among them.
using SweepArrays = std::map<std::string, SweepArray>;

/// The smallest and largest number of an array of doubles; nothing for other kinds or without a
/// value.
struct SweepBounds
{
    double minimum;
    double maximum;
};

std::optional<SweepBounds> bounds(const SweepArray& array);

/// Tells whether each value is finite in all its parts, or is 'no value'.
bool is_finite(const SweepArray& array);
} // namespace dbif
