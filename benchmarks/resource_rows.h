#pragma once

#include "benchmarks/comparison.h"
#include "benchmarks/data_store.h"

namespace bench {
/// Memory, import and size, of SQLite files. Where there is no peer, the figure is compared with an
/// allowance.
std::vector<Comparison> resource_rows(const DataStore& store, std::size_t points);

/// Reads the setup key of `setup_key` from the library's database `path` in this process, which has
/// done nothing else, and prints its peak memory, that of the result, and the number of values.
int print_peak_memory(const std::string& path);
} // namespace bench
