#pragma once

#include "dbif/sweep/sweep_array.h"

#include <cstddef>
#include <span>
#include <string>

namespace dbif {
/// The values of one key of one setup: a part of an array that holds those of several setups. The
/// array is null when the setup does not have the key.
struct SweepSlice
{
    const SweepArray* array = nullptr;
    std::size_t first = 0;
    std::size_t size = 0;

    [[nodiscard]] bool isPresent() const { return array != nullptr; }

    [[nodiscard]] bool hasValue(std::size_t point) const { return array->hasValue(first + point); }

    [[nodiscard]] std::string text(std::size_t point) const { return array->text(first + point); }

    /// The numbers of a slice of the kind `Double`.
    [[nodiscard]] std::span<const double> numbers() const
    {
        return {array->numbers.data() + first, size};
    }
};

/// The slice as an array of its own.
SweepArray copy_of(const SweepSlice& slice);
} // namespace dbif
