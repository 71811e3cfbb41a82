#pragma once

#include "dbui/connection_record.h"

#include <functional>
#include <string>
#include <vector>

/// The file of the stored connections, at `dbui_connections_file()`: an XML document with one
/// element per connection, passwords scrambled. Nothing is kept in memory between calls. A failure
/// is told to `error`, or to the standard error stream when that is null.

/// Makes a file without connections, and its directory, when there is none. True when a file is
/// there afterwards; an existing one is left as it is. False when the directory or the file cannot
/// be made, or the existing file cannot be read.
bool dbui_create_connections_file_if_not_found(std::string* error = nullptr);

/// Fills `connections` in file order, each once. False, with an empty list, when the file is
/// missing, cannot be opened, is no XML, or is larger than any list of connections: more than 4
/// MiB, or 64 attributes in an element.
bool dbui_get_connections_from_file(
    std::vector<DbuiConnection>* connections,
    std::string* error = nullptr);

/// Writes the file anew with exactly these connections, and announces it by
/// `dbConnectionNameListener`. On failure the old file stays whole. A record that is not stored yet
/// and has a `dbui::fault_of_record` is refused, and so is a list that needs more than 4 MiB.
bool dbui_save_connections_to_file(
    const std::vector<DbuiConnection>& connections,
    std::string* error = nullptr);

namespace dbui {
/// The list as it stands in the file.
struct StoredConnections
{
    std::vector<DbuiConnection> connections; ///< none when the file is missing or damaged
    bool isDamaged = false;                  ///< the file is there, but no XML
};

/// Changes the list; no other process can change the file before the result is written. False
/// leaves the file as it is. Must not change the stored list itself.
using ConnectionsChange = std::function<bool(StoredConnections*)>;

/// Writes the stored list as `change` leaves it; the rest as `dbui_save_connections_to_file`. False
/// without a message when `change` gave false; then only the signals before and after go out.
bool rewrite_connections(const ConnectionsChange& change, std::string* error);

/// Why the file cannot be rewritten, as a sentence with the name of the file that is in the way;
/// empty when it can. Tries it without changing the file, but makes a missing directory.
std::string fault_of_saving();
} // namespace dbui
