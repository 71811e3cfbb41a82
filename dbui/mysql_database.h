#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// Tells whether the record is one of a MySQL server that can be reached, but has no database of
/// the record's name. Tries to open it, which makes the schema in an empty database.
bool dbui_is_connection_invalid_due_to_mysql_database_unknown(const DbuiConnection& record);

/// Creates the record's database on its MySQL server unless it is there, and the schema in it. True
/// when it then opens; otherwise a message goes to `error`, or to the standard error stream when
/// that is null. Uses Qt's default connection for a moment: a host's own one is replaced and does
/// not come back.
bool dbui_create_mysql_database_for_connection(
    const DbuiConnection& record,
    std::string* error = nullptr);

namespace dbui {
/// The same, told by the error of a connection that was made from the record already. Asks no
/// server.
bool is_database_unknown(const DbuiConnection& record, const DBIF_Connection& connection);
} // namespace dbui
