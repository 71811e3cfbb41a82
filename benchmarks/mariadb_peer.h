#pragma once

#include "dbif/engine/sql_dialect.h"

#include "benchmarks/peer_database.h"

#include <memory>

namespace bench {
/// A database of a server read through the MariaDB client: prepared statements and the binary
/// protocol, so that numbers come as doubles, row by row as they arrive.
std::unique_ptr<PeerDatabase> open_mariadb_peer(const dbif::ConnectionParameters& place);
} // namespace bench
