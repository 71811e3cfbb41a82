#include "dbapi/words/database_fault.h"

#include "dbif/host/error_text.h"

namespace dbapi {
Fault database_fault(const DBIF_Exception& exception)
{
    Fault fault;
    fault.kind = exception.error().type() == QSqlError::ConnectionError ? Fault::Kind::Connection
                                                                        : Fault::Kind::Database;
    dbapi_build_error_string_from_dbif_exception(exception, &fault.text);
    return fault;
}
} // namespace dbapi
