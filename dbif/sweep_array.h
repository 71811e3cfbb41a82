#pragma once

#include "dbif/complex_values.h"
#include "dbif/data_type.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
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

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool hasValue(std::size_t point) const;
    /// The value at a point as text; empty when there is none.
    [[nodiscard]] std::string text(std::size_t point) const;
};

/// The smallest and largest number of an array of doubles; nothing for other kinds or without a
/// value.
struct SweepBounds
{
    double minimum;
    double maximum;
};

std::optional<SweepBounds> bounds(const SweepArray& array);

/// Whether all values are finite in all their parts, or none at all.
bool is_finite(const SweepArray& array);

/// Packs an array into chunks of at most 1 MiB (one value that is longer has a chunk of its own). A
/// chunk is a header of 16 bytes, then the values.
///
///     byte 0      format version, 1
///     byte 1      kind: 1 double, 2 complex, 3 matrix, 4 text
///     bytes 2-3   zero
///     bytes 4-7   number of values
///     bytes 8-15  XXH3 of the values, seeded with bytes 0-7
///
/// All little-endian. Doubles are IEEE 754; complex numbers pairs of them; a matrix is its rows and
/// columns as 32-bit numbers, then its cells row by row; a text its length in bytes as a 32-bit
/// number (0xFFFFFFFF: no value), then its bytes.
std::vector<std::string> pack(const SweepArray& array);

/// Appends the values of one chunk to `array`. Throws `DBIF_Exception` naming `place` when the
/// chunk is damaged, was written by a newer version or holds another kind.
void unpack(std::string_view chunk, const std::string& place, SweepArray* array);
} // namespace dbif
