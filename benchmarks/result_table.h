#pragma once

#include "benchmarks/comparison.h"

#include <map>

namespace bench {
/// The figures that were measured for one row.
struct Figure
{
    double ours = 0;
    double peer = 0;
    /// Why the row has no figures.
    std::string fault;
};

/// The figures by the row's id.
using Figures = std::map<std::string, Figure>;

/// Prints the rows that have figures as a table in Markdown, to standard output. False when one
/// misses its target or has a fault.
bool print_table(
    const std::vector<Comparison>& rows,
    const std::vector<Growth>& growths,
    const Figures& figures);
} // namespace bench
