#pragma once

#include "benchmarks/device_population.h"
#include "benchmarks/sweep_population.h"

#include <string>

namespace bench {
/// Creates the SQLite file `path` through the library's writer, in one transaction.
void fill_library_database(const std::string& path, const DevicePopulation& population);
void fill_library_database(const std::string& path, const SweepPopulation& population);
} // namespace bench
