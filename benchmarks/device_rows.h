#pragma once

#include "benchmarks/comparison.h"
#include "benchmarks/data_store.h"

namespace bench {
/// The reads of a database with so many devices. With targets when `isLargest`; the databases are
/// made on the first read.
std::vector<Comparison> device_rows(const DataStore& store, std::size_t devices, bool isLargest);
} // namespace bench
