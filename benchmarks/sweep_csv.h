#pragma once

#include "benchmarks/sweep_population.h"

#include <string>
#include <vector>

namespace bench {
/// Writes a file of annotated CSV per setup into a new folder.
void write_sweep_files(const std::string& folder, const SweepPopulation& population);
} // namespace bench
