#include "benchmarks/data_store.h"

#include "benchmarks/library_filling.h"
#include "benchmarks/peer_filling.h"
#include "benchmarks/sweep_csv.h"

#include <filesystem>
#include <iostream>

namespace bench {
namespace {
namespace fs = std::filesystem;

/// The version of the stored data. It is raised when the populations, the peer's schema or the
/// library's schema change, so that no old data is used.
constexpr const char* kDataVersion = "3";

template <typename Population>
DatabasePair
made_pair(DatabaseEngine& engine, const std::string& stem, const Population& population)
{
    DatabasePair pair{stem + ".library", stem + ".peer"};
    engine.makeIfMissing(pair.library, [&](const DBIF_Connection& connection) {
        fill_library_database(connection, population);
    });
    engine.makeIfMissing(pair.peer, [&](const DBIF_Connection& connection) {
        fill_peer_database(connection, population);
    });
    return pair;
}

SweepPopulation sweep_population(std::size_t points)
{
    return SweepPopulation(points / SweepPopulation::kPointsPerSetup);
}
} // namespace

DataStore::DataStore(const std::string& folder, EngineKind kind)
    : folder_(folder + "/version" + kDataVersion)
{
    fs::create_directories(folder_);
    engine_ = kind == EngineKind::Sqlite ? sqlite_engine(folder_) : mariadb_engine(file("mariadb"));
}

DatabasePair DataStore::devices(std::size_t count) const
{
    return made_pair(*engine_, "devices" + std::to_string(count), DevicePopulation(count));
}

DatabasePair DataStore::sweeps(std::size_t points) const
{
    return made_pair(*engine_, "points" + std::to_string(points), sweep_population(points));
}

std::string DataStore::sweepFiles(std::size_t points) const
{
    std::string path = file("points" + std::to_string(points) + ".csv");
    if (!fs::exists(path)) {
        // A folder that has its final name is complete.
        const std::string unfinished = path + ".unfinished";
        std::cerr << "making " << path << '\n';
        fs::remove_all(unfinished);
        write_sweep_files(unfinished, sweep_population(points));
        fs::rename(unfinished, path);
    }
    return path;
}
} // namespace bench
