#pragma once

#include "benchmarks/database_engine.h"

#include <cstddef>
#include <memory>
#include <string>

namespace bench {
enum class EngineKind { Sqlite, MySql };

/// The largest accepted ratios of a row. On a server, both sides wait for the server and for the
/// network.
struct Targets
{
    double onSqlite;
    double onServer;

    [[nodiscard]] double of(const DatabaseEngine& engine) const
    {
        return engine.isServer() ? onServer : onSqlite;
    }
};

/// The same data in the library's database and in the peer's, by their names.
struct DatabasePair
{
    std::string library;
    std::string peer;
};

/// The folder that holds the databases of an engine. Each is made when it is first asked for and
/// kept for later runs; one whose making was interrupted is made anew.
class DataStore
{
public:
    /// Creates the folder when it is missing, and starts the server where there is one.
    DataStore(const std::string& folder, EngineKind kind);

    [[nodiscard]] DatabaseEngine& engine() const { return *engine_; }

    [[nodiscard]] DatabasePair devices(std::size_t count) const;
    [[nodiscard]] DatabasePair sweeps(std::size_t points) const;
    /// A folder of annotated CSV with the same setups as `sweeps`.
    [[nodiscard]] std::string sweepFiles(std::size_t points) const;

    [[nodiscard]] std::string file(const std::string& name) const { return folder_ + "/" + name; }

private:
    std::string folder_;
    std::shared_ptr<DatabaseEngine> engine_;
};
} // namespace bench
