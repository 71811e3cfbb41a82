#pragma once

#include "dbif/sql_dialect.h"

#include <QSqlDatabase>

namespace dbif {
/// The version of the schema that this code writes and reads.
inline constexpr int kSchemaVersion = 1;

/// Creates the measurement schema in a database without tables, in one transaction where the engine
/// can. Accepts a database that holds the schema, and writes nothing to it. Throws `DBIF_Exception`
/// for a database with other tables, and for one whose schema is newer.
void initialize_schema(QSqlDatabase& database, const SqlDialect& dialect);
} // namespace dbif
