#pragma once

#include "dbif/engine/sql_dialect.h"

#include <QSqlDatabase>

#include <memory>

namespace dbif {
/// The sqlite3 C client of an open "QSQLITE" connection.
std::unique_ptr<SqlSession> open_sqlite_session(const QSqlDatabase& database);
} // namespace dbif
