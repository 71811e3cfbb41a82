#pragma once

#include "benchmarks/comparison.h"
#include "benchmarks/data_store.h"

namespace bench {
/// The reads of a database with so many points of setups.
std::vector<Comparison> point_rows(const DataStore& store, std::size_t points);
} // namespace bench
