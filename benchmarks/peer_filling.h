#pragma once

#include "benchmarks/device_population.h"
#include "benchmarks/sweep_population.h"

#include <string>

namespace bench {
/// Creates the SQLite file `path` with the data of the population in the schema that one would
/// write down first: a row per point with a column per key, a row per device and key. Links,
/// device (key, value), names, lots, temperatures and modification times are indexed; statistics
/// are made.
void fill_peer_database(const std::string& path, const DevicePopulation& population);
void fill_peer_database(const std::string& path, const SweepPopulation& population);
} // namespace bench
