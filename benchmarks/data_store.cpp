#include "benchmarks/data_store.h"

#include "benchmarks/library_filling.h"
#include "benchmarks/peer_filling.h"
#include "benchmarks/sweep_csv.h"

#include <filesystem>
#include <iostream>

namespace bench {
namespace {
namespace fs = std::filesystem;

/// Counts up when the populations or the peer's schema change, so that no old data is used.
constexpr const char* kDataVersion = "1";

/// Lets `make` write a file (or folder) of another name, which then takes the right one: so what
/// bears the right name is complete.
template <typename Make>
std::string made(const std::string& path, const Make& make)
{
    if (fs::exists(path)) {
        return path;
    }
    std::cerr << "making " << path << '\n';
    const std::string unfinished = path + ".unfinished";
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        fs::remove_all(unfinished + suffix);
    }
    make(unfinished);
    fs::rename(unfinished, path);
    return path;
}

template <typename Population>
DatabasePair made_pair(const std::string& stem, const Population& population)
{
    return {
        made(
            stem + ".library.db",
            [&](const std::string& path) { fill_library_database(path, population); }),
        made(stem + ".peer.db", [&](const std::string& path) {
            fill_peer_database(path, population);
        })};
}

SweepPopulation sweep_population(std::size_t points)
{
    return SweepPopulation(points / SweepPopulation::kPointsPerSetup);
}
} // namespace

DataStore::DataStore(std::string folder) : folder_(std::move(folder))
{
    folder_ += std::string("/version") + kDataVersion;
    fs::create_directories(folder_);
}

DatabasePair DataStore::devices(std::size_t count) const
{
    return made_pair(file("devices" + std::to_string(count)), DevicePopulation(count));
}

DatabasePair DataStore::sweeps(std::size_t points) const
{
    return made_pair(file("points" + std::to_string(points)), sweep_population(points));
}

std::string DataStore::sweepFiles(std::size_t points) const
{
    return made(file("points" + std::to_string(points) + ".csv"), [&](const std::string& path) {
        write_sweep_files(path, sweep_population(points));
    });
}
} // namespace bench
