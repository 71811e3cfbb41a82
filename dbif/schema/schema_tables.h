#pragma once

#include "dbif/engine/sql_dialect.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace dbif {
/// Makes the tables, indexes and views of the measurement schema in a database that has none of
/// them, inside the caller's transaction. Throws `DBIF_Exception` naming the statement that was
/// refused.
void write_schema(QSqlDatabase& database, const SqlDialect& dialect);

/// Runs one statement; throws `DBIF_Exception` when the database refuses it.
void run(QSqlQuery& query, const SqlText& sql);
void run(QSqlDatabase& database, const SqlText& sql);
} // namespace dbif
