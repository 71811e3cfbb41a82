#pragma once

#include "dbui/connection_record.h"

#include <string>

/// Checks that a connection opens, as `dbui_make_dbif_connection_object` opens it. A failure is
/// shown in a message box when `interactive`; otherwise it goes to `error`, or to the standard
/// error stream when that is null. Success is shown when `interactive`.

bool dbui_test_connection(
    const DbuiConnection& record,
    bool interactive,
    std::string* error = nullptr);
bool dbui_test_connection_by_name(
    const std::string& name,
    bool interactive,
    std::string* error = nullptr);

/// Checks a record before it is stored. A MySQL database that its server does not know is created:
/// after asking when `interactive`, otherwise without. A failure is assigned to `error` also when
/// it is shown, but for the user's own No, which has no message.
bool dbui_validate_connection_opens(
    const DbuiConnection& record,
    bool interactive,
    std::string* error = nullptr);
