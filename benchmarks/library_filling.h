#pragma once

#include "dbif/connection/connection.h"

#include "benchmarks/device_population.h"
#include "benchmarks/sweep_population.h"

namespace bench {
/// Fills an empty database through the library's writer, in one transaction.
void fill_library_database(DBIF_Connection connection, const DevicePopulation& population);
void fill_library_database(DBIF_Connection connection, const SweepPopulation& population);
} // namespace bench
