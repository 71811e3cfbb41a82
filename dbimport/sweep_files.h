#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dbapi {
/// The files that the paths given to an import stand for: a file for itself, a folder for the
/// files "*.csv" in it (not in folders below it; hidden ones are left out), sorted by name. A file
/// that is named twice is taken once.
struct SweepFiles
{
    std::vector<std::string> files;
    /// The size of all files together.
    std::uintmax_t bytes = 0;
    /// Why some path stands for nothing, one sentence each.
    std::vector<std::string> faults;
};

SweepFiles find_sweep_files(const std::vector<std::string>& paths);
} // namespace dbapi
