#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dbapi {
/// The files of an import.
struct SweepFiles
{
    /// In the order of the paths that were given; those of a folder by name.
    std::vector<std::string> files;
    /// The size of all files together, in bytes, for a progress bar.
    std::uintmax_t bytes = 0;
    /// For each path that stands for no file, why, in one sentence.
    std::vector<std::string> faults;
};

/// Finds the files that paths stand for: a file for itself, a folder for the files "*.csv" directly
/// in it, hidden ones left out. A file that is named twice, also by way of a link, is taken once.
/// Paths are those of the file system, byte by byte. Does not open the files; never throws on
/// account of a path.
SweepFiles find_sweep_files(const std::vector<std::string>& paths);
} // namespace dbapi
