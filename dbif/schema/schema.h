#pragma once

#include "dbif/engine/sql_dialect.h"

#include <QSqlDatabase>

namespace dbif {
/// The version of the schema that this code writes and reads.
inline constexpr int kSchemaVersion = 1;

/// What a database holds, as far as the measurement schema goes.
struct SchemaState
{
    enum class Kind {
        Empty,      ///< no tables
        Foreign,    ///< tables, but not these
        Incomplete, ///< its creation was interrupted
        Damaged,    ///< records, but no version of their schema that could be read
        Complete
    };
    Kind kind = Kind::Empty;
    int version = 0; ///< when it is complete
};

/// Writes nothing. Throws `DBIF_Exception` when the database cannot be read.
SchemaState schema_state(QSqlDatabase& database, const SqlDialect& dialect);

/// Creates the measurement schema in a database without tables, in one transaction where the engine
/// can. Accepts a database that holds the schema, and writes nothing to it. Throws `DBIF_Exception`
/// for a database with other tables, and for one whose schema is newer. What a creation left on a
/// server that was interrupted is dropped and made anew, as long as it holds no data.
void initialize_schema(QSqlDatabase& database, const SqlDialect& dialect);
} // namespace dbif
