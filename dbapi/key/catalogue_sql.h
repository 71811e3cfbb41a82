#pragma once

#include "dbapi/key/key_term.h"
#include "dbif/engine/sql_text.h"

#include <set>
#include <string>

namespace dbapi {
/// The statement that lists the keys of a table that some record has: name, data type, and category
/// or input flag. `recordIds` is a statement that yields the records that count, with their ids as
/// "<table>_id"; empty for all. With terms of that table whose category is not fixed, only keys
/// that fit one of them are listed.
QString catalogue_statement(
    const std::string& tablename,
    const std::set<dbapiKeyTermC>& terms,
    const QString& recordIds);
} // namespace dbapi
