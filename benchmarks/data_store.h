#pragma once

#include <cstddef>
#include <string>

namespace bench {
/// The same data in the library's database and in the peer's; paths of SQLite files.
struct DatabasePair
{
    std::string library;
    std::string peer;
};

/// The folder that holds the databases. Each is made when it is first asked for and kept for later
/// runs; one whose making was interrupted is made anew. Says on standard error what it makes.
class DataStore
{
public:
    /// Creates the folder when it is missing.
    explicit DataStore(std::string folder);

    [[nodiscard]] DatabasePair devices(std::size_t count) const;
    [[nodiscard]] DatabasePair sweeps(std::size_t points) const;
    /// A folder of annotated CSV with the same setups as `sweeps`.
    [[nodiscard]] std::string sweepFiles(std::size_t points) const;

    [[nodiscard]] std::string file(const std::string& name) const { return folder_ + "/" + name; }

private:
    std::string folder_;
};
} // namespace bench
