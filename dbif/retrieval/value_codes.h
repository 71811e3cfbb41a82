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
    /// Codes are less than this.
    std::size_t count = 0;
};

/// The codes of a column with few distinct values, as those of a swept voltage; nothing, soon, for
/// another one. Complex numbers have none.
std::optional<ValueCodes> code_values(const ResultColumn& column);
} // namespace dbif
