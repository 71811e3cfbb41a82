#pragma once

#include "dbif/connection/connection.h"

#include <QDateTime>

namespace dbif {
/// The latest modification time, UTC, over the records of all tables; a null time in an empty
/// database. It takes one look-up in an index for each table. Throws `DBIF_Exception` on a database
/// error.
QDateTime newest_time(DBIF_Connection& connection);

/// A time as it is stored: "2026-01-31T12:34:56.789", UTC.
std::string stored_time(const QDateTime& time);
} // namespace dbif
