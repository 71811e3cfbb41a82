#pragma once

#include "dbif/value/data_type.h"

#include <bit>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <xxhash.h>

// The head of a chunk and the sizes of chunks, for those who write them and those who read them
// (see sweep_packing.h for the format).

namespace dbif {
// Values are packed as they are in memory, so that reading them is copying.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(std::complex<double>) == 2 * sizeof(double));

constexpr std::size_t kChunkBytes = 1U << 20U;
/// A page of SQLite's (8 KiB) holds four such rows. The rest of a longer row goes to pages of its
/// own, which it fills badly, so columns of up to `kFewValuesBytes` are split.
constexpr std::size_t kRowBytes = 2000;
constexpr std::size_t kFewValuesBytes = 8 * kRowBytes;
constexpr std::uint8_t kPlain = 1;
constexpr std::uint8_t kCompressed = 2;
constexpr std::uint32_t kMissingText = 0xFFFFFFFF;

inline std::uint8_t kind_code(ValueKind kind)
{
    switch (kind) {
    case ValueKind::Double:
        return 1;
    case ValueKind::Complex:
        return 2;
    case ValueKind::Matrix:
        return 3;
    case ValueKind::Text:
        return 4;
    }
    return 0;
}

/// The first bytes of a chunk, as they are stored.
struct ChunkHead
{
    std::uint8_t format;
    std::uint8_t kind;
    std::uint16_t zero;
    std::uint32_t count;
    std::uint64_t checksum;
};

/// The most values of a size that a chunk of so many bytes takes.
constexpr std::size_t values_in(std::size_t chunkBytes, std::size_t valueBytes)
{
    return (chunkBytes - sizeof(ChunkHead)) / valueBytes;
}

/// The head of a chunk; one that is too short has none, and counts as an empty text.
inline ChunkHead head_of(std::string_view chunk)
{
    ChunkHead header{kPlain, kind_code(ValueKind::Text), 0, 0, 0};
    if (chunk.size() >= sizeof(ChunkHead)) {
        std::memcpy(&header, chunk.data(), sizeof(ChunkHead));
    }
    return header;
}

inline std::uint64_t checksum_of(ChunkHead header, std::string_view values)
{
    header.format = kPlain;
    std::uint64_t seed = 0;
    std::memcpy(&seed, &header, sizeof(seed));
    return XXH3_64bits_withSeed(values.data(), values.size(), seed);
}
} // namespace dbif
