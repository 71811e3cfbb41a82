#pragma once

#include "dbui/connection_record.h"

#include <set>
#include <string>

/// Changes and look-ups of the stored connections. Every change reads the file, changes the list
/// and writes it as one step among all processes, and is announced by `dbConnectionNameListener`. A
/// failure is assigned to `error` when that is given, shown in a message box when `interactive`,
/// and goes to the standard error stream when neither holds.

/// Stores the record as the last one; an equal one that is stored already moves there. Does not
/// look whether the name is taken by another record. False, without a message, when the name is
/// empty. A file that is no XML is replaced by one with this record only.
bool dbui_add_connection(
    const DbuiConnection& connection,
    bool interactive,
    std::string* error = nullptr);

/// Removes the old record, if it is stored, and adds the new one: two rewrites. True when the new
/// record is stored. A new record that cannot be added, such as one without a name, leaves the list
/// without either.
bool dbui_update_connection(
    const DbuiConnection& oldConnection,
    const DbuiConnection& newConnection,
    bool interactive,
    std::string* error = nullptr);

/// Removes the first record that is equal. True, and nothing is written, when there is none.
bool dbui_remove_connection(
    const DbuiConnection& connection,
    bool interactive,
    std::string* error = nullptr);

/// Finds the first record of exactly this name and assigns it to `connection`. False, with
/// `connection` cleared, when there is none or the file cannot be read.
bool dbui_find_connection_by_name(const std::string& name, DbuiConnection* connection);

/// Assigns the stored names to `names`; none when the file cannot be read, which only `error`
/// tells.
void dbui_get_connection_names(std::set<std::string>* names, std::string* error = nullptr);
