#pragma once

#include "dbif/connection/connection.h"

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

    /// With the version, for people.
    [[nodiscard]] virtual std::string description() = 0;
    [[nodiscard]] virtual bool isServer() const = 0;

    /// Where the library finds the database.
    [[nodiscard]] virtual dbif::ConnectionParameters place(const std::string& name) const = 0;
    [[nodiscard]] virtual std::unique_ptr<PeerDatabase> openPeer(const std::string& name) const = 0;

    /// Lets `fill` fill the database, empty at first, unless that was done before: what is not
    /// complete does not count. Says on standard error what it makes.
    void makeIfMissing(
        const std::string& name,
        const std::function<void(const DBIF_Connection& connection)>& fill);

protected:
    [[nodiscard]] virtual bool isComplete(const std::string& name) = 0;
    /// Makes an empty database, which is not complete, in the place of any that there is, and tells
    /// where to fill it.
    virtual dbif::ConnectionParameters makeEmpty(const std::string& name) = 0;
    virtual void complete(const std::string& name) = 0;
};

/// Files in a folder, which has to be there.
std::unique_ptr<DatabaseEngine> sqlite_engine(const std::string& folder);

/// A server on this machine that runs while the object lives and keeps its data in a folder, which
/// is made when it is missing.
std::unique_ptr<DatabaseEngine> mariadb_engine(const std::string& folder);
} // namespace bench
