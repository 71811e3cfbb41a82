#include "dbapi/words/database_fault.h"

#include "dbif/engine/sql_dialect.h"
#include "dbif/host/error_text.h"

namespace dbapi {
Fault database_fault(const DBIF_Exception& exception)
{
    // SQLite has none of the codes by which a server tells that a connection is lost.
    const QSqlError& error = exception.error();
    const bool isOfConnection =
        error.type() == QSqlError::ConnectionError || dbif::mysql_dialect().isConnectionLost(error);
    Fault fault;
    fault.kind = isOfConnection ? Fault::Kind::Connection : Fault::Kind::Database;
    dbapi_build_error_string_from_dbif_exception(exception, &fault.text);
    return fault;
}
} // namespace dbapi
