#pragma once

#include "dbif/connection/connection.h"

#include "benchmarks/device_population.h"
#include "benchmarks/sweep_population.h"

namespace bench {
/// Fills an empty database with the data of the population, in the schema that one would write down
/// first: a row per point with a column per key, a row per device and key. Links, device (key,
/// value), names, lots, temperatures and modification times are indexed; statistics are made.
void fill_peer_database(DBIF_Connection connection, const DevicePopulation& population);
void fill_peer_database(DBIF_Connection connection, const SweepPopulation& population);
} // namespace bench
