#pragma once

#include "dbif/write/record_values.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// One column of a setup as it is stored.
struct PackedColumn
{
    std::string name;
    bool isInput = false;
    std::string header;
    ValueKind kind = ValueKind::Double;
    std::size_t points = 0;
    std::optional<SweepBounds> bounds;
    std::vector<std::string> chunks;
};

/// Checks that a setup can hold the columns. Throws a `DBIF_Exception` that says what is wrong with
/// them.
void check_sweep(const std::vector<SetupColumn>& sweep);

PackedColumn pack_column(const SetupColumn& column);

/// Checks the columns and packs them, one after the other, so that hardly more memory is in use
/// than they take. Any thread may do so.
std::vector<PackedColumn> pack_sweep(std::vector<SetupColumn> sweep);
} // namespace dbif
