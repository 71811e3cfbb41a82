#pragma once

#include <string>

/// The path of the connections file: "vanto_db_connections.xml" in the directory that the
/// environment variable VANTO_DB_CONNECTIONS_DIRECTORY names (also when it names nothing), or else
/// in $HOME/tarsier/config. Asks the environment anew at every call; the file need not exist.
std::string dbui_connections_file();

/// Makes the directory of `filePath`, with its parents, unless the file or the directory is there.
/// When it cannot be made, a caller who gave an `error` gets a message and false, and one who gave
/// none gets true.
bool dbui_make_path_if_required(const std::string& filePath, std::string* error = nullptr);
