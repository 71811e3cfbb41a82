#pragma once

#include "dbif/engine/sql_dialect.h"

#include <QSqlDatabase>

#include <memory>

namespace dbif {
/// The MariaDB C client of an open "QMYSQL" connection. Statements run by the binary protocol.
std::unique_ptr<SqlSession> open_mysql_session(const QSqlDatabase& database);
} // namespace dbif
