#include "dbif/sweep/sweep_slice.h"

#include <algorithm>

namespace dbif {
SweepArray copy_of(const SweepSlice& slice)
{
    const auto part = [&slice](const auto& values) {
        const auto begin =
            values.begin() + static_cast<std::ptrdiff_t>(std::min(slice.first, values.size()));
        return std::vector(
            begin, begin + std::min(static_cast<std::ptrdiff_t>(slice.size), values.end() - begin));
    };
    const SweepArray& array = *slice.array;
    return {
        array.kind, part(array.numbers), part(array.complexNumbers), part(array.matrices),
        part(array.texts)};
}
} // namespace dbif
