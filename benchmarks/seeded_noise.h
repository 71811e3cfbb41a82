#pragma once

#include <cstdint>

namespace bench {
/// Pseudo-random numbers that are the same on every machine and in every run: each is a function of
/// its stream (what it is used for) and its index alone.
inline std::uint64_t scrambled(std::uint64_t stream, std::uint64_t index)
{
    constexpr std::uint64_t kSeed = 20260131;
    std::uint64_t bits =
        (kSeed + stream) * 0x9E3779B97F4A7C15 + index * 0xD1342543DE82EF95 + 0x2545F4914F6CDD1D;
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31U);
}

/// At least 0 and less than 1, with all digits that a double has.
inline double unit_noise(std::uint64_t stream, std::uint64_t index)
{
    return static_cast<double>(scrambled(stream, index) >> 11U) * 0x1.0p-53;
}

/// At least 0 and less than `count`.
inline std::uint64_t pick(std::uint64_t stream, std::uint64_t index, std::uint64_t count)
{
    return scrambled(stream, index) % count;
}
} // namespace bench
