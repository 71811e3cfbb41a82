#pragma once

#include "dbui/connection_record.h"

#include <string>

/// Checks that a connection opens, as `dbui_make_dbif_connection_object` opens it. A failure is
/// shown in a message box when `interactive`; otherwise it goes to `error`, or to the standard
/// error stream when that is null. Success is shown when `interactive`.

/// Opens the record's database for a moment, as `dbui_make_dbif_connection_object` does: a missing
/// SQLite file and the schema of an empty database are made. True when it opened.
bool dbui_test_connection(
    const DbuiConnection& record,
    bool interactive,
    std::string* error = nullptr);

/// The same for the stored record of this name. False also when there is none.
bool dbui_test_connection_by_name(
    const std::string& name,
    bool interactive,
    std::string* error = nullptr);

/// Opens a record's database before the record is stored; a missing SQLite file is made. A MySQL
/// database that its server does not know is created: after asking when boxes are shown, otherwise
/// without. True when the database opened or was created. A failure is assigned to `error` also
/// when it is shown; an answer of No to the question is no failure to report, and leaves `error`
/// empty.
bool dbui_validate_connection_opens(
    const DbuiConnection& record,
    bool interactive,
    std::string* error = nullptr);
