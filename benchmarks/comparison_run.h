#pragma once

#include "benchmarks/comparison.h"

#include <vector>

namespace bench {
/// Measures the rows with Google Benchmark, whose flags apply, and prints the table. False when a
/// target is missed or two results differ.
bool run_comparisons(const std::vector<Comparison>& rows, const std::vector<Growth>& growths);
} // namespace bench
