#pragma once

#include "benchmarks/peer_database.h"

#include <memory>

namespace bench {
/// An SQLite file read through the sqlite3 client. The settings of the connection are SQLite's own,
/// as they are for the library's connections.
std::unique_ptr<PeerDatabase> open_sqlite_peer(const std::string& path);
} // namespace bench
