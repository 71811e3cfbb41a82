#pragma once

#include "dbif/engine/sql_dialect.h"
#include "dbif/schema/schema_names.h"

#include <QSqlDatabase>

namespace dbif {
/// The state of a database with regard to the measurement schema.
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

/// Looks at the tables of the database, and writes nothing. Throws `DBIF_Exception` when it cannot
/// be read.
SchemaState schema_state(QSqlDatabase& database, const SqlDialect& dialect);

/// The treatment of a database without tables.
enum class EmptyDatabase { Create, Refuse };

/// Creates the measurement schema in a database without tables, in one transaction where the engine
/// can. Accepts a database that holds the schema, and writes nothing to it. Throws `DBIF_Exception`
/// for a database with other tables, and for one whose schema is newer. Tables that an interrupted
/// creation left on a server are dropped and created anew, as long as they hold no data.
void initialize_schema(
    QSqlDatabase& database,
    const SqlDialect& dialect,
    EmptyDatabase emptyDatabase = EmptyDatabase::Create);
} // namespace dbif
