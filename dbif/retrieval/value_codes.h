#pragma once

#include "dbif/retrieval/result_column.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace dbif {
/// A number for each row of a column: equal ones where the values are equal, and in the order of
/// the values.
struct ValueCodes
{
    std::vector<std::uint16_t> codes;
    /// All codes are less than this.
    std::size_t count = 0;
};

/// The codes of a column with few distinct values, such as a swept voltage. Nothing for a column
/// with many, which is given up early, and for complex numbers.
std::optional<ValueCodes> code_values(const ResultColumn& column);
} // namespace dbif
