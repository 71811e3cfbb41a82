#include "dbif/engine/sql_dialect.h"

namespace dbif {
const SqlDialect* dialect_for(const std::string& driver)
{
    if (driver == "QSQLITE") {
        return &sqlite_dialect();
    }
    if (driver == "QMYSQL") {
        return &mysql_dialect();
    }
    return nullptr;
}
} // namespace dbif
