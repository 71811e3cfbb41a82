#pragma once

#include "dbif/connection/connection.h"
#include "dbif/engine/sql_dialect.h"

#include "benchmarks/peer_database.h"

#include <functional>
#include <memory>
#include <string>

namespace bench {
/// The kind of database that the rows are measured on: where its databases stand, which go by names
/// like "points1000000.peer", and how they are opened.
class DatabaseEngine
{
    Q_DISABLE_COPY_MOVE(DatabaseEngine)

public:
    DatabaseEngine() = default;
    virtual ~DatabaseEngine() = default;

    /// The name of the engine with its version, for people.
    [[nodiscard]] virtual std::string description() = 0;
    [[nodiscard]] virtual bool isServer() const = 0;

    /// Where the library finds the database.
    [[nodiscard]] virtual dbif::ConnectionParameters place(const std::string& name) const = 0;
    [[nodiscard]] virtual std::unique_ptr<PeerDatabase> openPeer(const std::string& name) const = 0;

    /// Calls `fill` with the database, which is empty at first, unless it is complete already. Says
    /// on standard error what it makes.
    void makeIfMissing(
        const std::string& name,
        const std::function<void(const DBIF_Connection& connection)>& fill);

protected:
    [[nodiscard]] virtual bool isComplete(const std::string& name) = 0;
    /// Makes an empty database, which does not count as complete, in the place of any old one, and
    /// returns where to fill it.
    virtual dbif::ConnectionParameters makeEmpty(const std::string& name) = 0;
    virtual void complete(const std::string& name) = 0;
};

/// An engine whose databases are files in a folder, which has to exist.
std::unique_ptr<DatabaseEngine> sqlite_engine(const std::string& folder);

/// An engine that runs a server on this machine while the object lives. It keeps its data in a
/// folder, which is made when it is missing.
std::unique_ptr<DatabaseEngine> mariadb_engine(const std::string& folder);
} // namespace bench
