#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// Opens the record's database, makes a missing SQLite file and the schema of an empty database,
/// and sets `connection`. True also when the database did not open: then the handle is not valid
/// and holds the error. False, with a blank handle, when the schema could not be made or is not
/// ours; the text goes to `error`, or is reported when that is null. A port that is no number
/// counts as 3306.
bool dbui_make_dbif_connection_object(
    const DbuiConnection& record,
    DBIF_Connection* connection,
    std::string* error = nullptr);

/// The same for the stored record of this name, but a missing SQLite file stays missing and gives a
/// handle that is not valid. False as well when no record has the name.
bool dbui_make_dbif_connection_object_by_name(
    const std::string& name,
    DBIF_Connection* connection,
    std::string* error = nullptr);

namespace dbui {
/// The port of servers that a record without one means.
inline constexpr int kStandardPort = 3306;

/// A handle that leads nowhere and is not valid.
DBIF_Connection blank_connection();

/// What both calls above share.
bool open_connection(
    const DbuiConnection& record,
    dbif::MissingFile missingFile,
    DBIF_Connection* connection,
    std::string* error);
} // namespace dbui
