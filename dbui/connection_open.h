#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <string>

/// Opens the record's database and sets `connection` to a handle to it. A missing SQLite file is
/// made, and so is the schema of an empty database. A port that is no number counts as 3306.
/// `error` is emptied first, where it is given.
///
/// True also when the database did not open: then the handle is not valid and holds the error.
/// False, with a blank handle, when the schema could not be made or the tables of the database are
/// not those of this library; the text goes to `error`, or to the standard error stream when that
/// is null. Throws no
/// `DBIF_Exception`.
bool dbui_make_dbif_connection_object(
    const DbuiConnection& record,
    DBIF_Connection* connection,
    std::string* error = nullptr);

/// The same for the stored record of this name, but a missing SQLite file stays missing and gives a
/// handle that is not valid. False as well, with `connection` as it was, when no record has the
/// name.
bool dbui_make_dbif_connection_object_by_name(
    const std::string& name,
    DBIF_Connection* connection,
    std::string* error = nullptr);

namespace dbui {
/// The port that a record without one means.
inline constexpr int kStandardPort = 3306;

/// A handle without a driver: not valid, and used by nobody else.
DBIF_Connection blank_connection();

/// Opens the record's database as both calls above do; `missingFile` says what becomes of a missing
/// SQLite file.
bool open_connection(
    const DbuiConnection& record,
    dbif::MissingFile missingFile,
    DBIF_Connection* connection,
    std::string* error);
} // namespace dbui
