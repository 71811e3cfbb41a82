#pragma once

#include "dbif/column_store.h"
#include "dbif/connection.h"
#include "dbif/sweep_slice.h"

#include <functional>
#include <span>
#include <vector>

namespace dbif {
/// The points of one setup.
struct SweepPoints
{
    /// Its place among the setups that are read.
    std::size_t place = 0;
    std::size_t count = 0;
    /// A slice for each column that is read; valid until the next setup.
    std::span<const SweepSlice> columns;
};

/// Reads columns of setups (ascending ids), and hands over one setup after another. Holds the
/// arrays of about a million points at a time. Throws `DBIF_Exception` naming setup and key when
/// stored data are damaged.
void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    const std::function<void(const SweepPoints& points)>& use);
} // namespace dbif
