#pragma once

#include "dbif/column_store.h"
#include "dbif/connection.h"
#include "dbif/sweep_array.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace dbif {
/// A setup to read, with the number of its points.
struct SweepPlace
{
    int setup = 0;
    std::size_t points = 0;
};

/// The arrays of one setup, by the unique key of their column. A column that the setup does not
/// have is not among them.
using SweepArrays = std::map<std::string, SweepArray>;

/// Reads columns of setups, in the order of `places` (ascending ids), and hands over one setup
/// after another with its position in `places`. Holds the arrays of about a million points at a
/// time. Throws `DBIF_Exception` naming setup and key when stored data are damaged.
void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<SweepPlace>& places,
    const std::vector<KeyDefinition>& columns,
    const std::function<void(std::size_t place, SweepArrays& arrays)>& use);
} // namespace dbif
