#pragma once

#include "dbif/sweep/sweep_array.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dbif {
/// Packs an array into chunks of at most 1 MiB (one value that is longer has a chunk of its own);
/// numbers that take between 2 and 16 kB, into chunks of at most 2 kB. A chunk is a header of 16
/// bytes, then the values.
///
///     byte 0      format: 1 values as they are, 2 values compressed
///     byte 1      kind: 1 double, 2 complex, 3 matrix, 4 text
///     bytes 2-3   zero
///     bytes 4-7   number of values
///     bytes 8-15  XXH3 of the values, seeded with bytes 0-7 of format 1
///
/// All little-endian. Doubles are IEEE 754; complex numbers pairs of them; a matrix is its rows and
/// columns as 32-bit numbers, then its cells row by row; a text its length in bytes as a 32-bit
/// number (0xFFFFFFFF: no value), then its bytes. Compressed values are their size in bytes as a
/// 32-bit number, then an LZ4 block (https://github.com/lz4/lz4, "LZ4 Block Format Description"):
/// swept voltages repeat and shrink to a tenth, measured currents do not and stay as they are.
std::vector<std::string> pack(const SweepArray& array);

/// The place of values in the database, for error messages.
struct SweepPlace
{
    std::string_view key;
    int setup = 0;

    /// The place as it is named in errors: The key "ID" of setup 42
    [[nodiscard]] std::string text() const;
};

/// Appends the values of one chunk to `array`. Throws `DBIF_Exception` naming `place` when the
/// chunk is damaged, was written by a newer version or holds another kind.
void unpack(std::string_view chunk, const SweepPlace& place, SweepArray* array);

/// The number of values in a chunk, as its head says; 0 for a chunk without a head.
std::size_t value_count(std::string_view chunk);

/// Tells whether the values of a key may go on in a further chunk behind this one: a chunk of
/// numbers that is not full is the last one.
bool may_go_on(std::string_view chunk);

/// Throws `DBIF_Exception` naming `place` when the chunks of a key had another number of points
/// than its setup.
void check_length(const SweepPlace& place, std::size_t found, std::size_t expected);

/// The bytes of a chunk in front of its values.
constexpr std::size_t kChunkHeadBytes = 16;

/// The part of a chunk's head that is the same for the same values, compressed or not, and differs
/// for others.
std::string_view chunk_identity(std::string_view head);

/// The values of a chunk of a kind as they were before they were compressed. Throws like `unpack`.
std::string chunk_values(std::string_view chunk, ValueKind kind, const SweepPlace& place);
} // namespace dbif
