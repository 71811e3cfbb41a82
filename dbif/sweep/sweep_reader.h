#pragma once

#include "dbif/connection/connection.h"
#include "dbif/sweep/sweep_block.h"

#include <functional>
#include <vector>

namespace dbif {
/// How setups without any of the columns are given: with their number of points, or with none.
enum class SetupsWithoutColumns { Counted, Empty };

/// Reads columns of setups (ascending ids), and hands over one setup after another: not always in
/// the calling thread, so that many setups are used while more are read; `use` must not touch the
/// connection. Holds the arrays of about a million points at a time. Throws `DBIF_Exception` naming
/// setup and key when stored data are damaged.
void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    SetupsWithoutColumns others,
    const std::function<void(const SweepPoints& points)>& use);
} // namespace dbif
