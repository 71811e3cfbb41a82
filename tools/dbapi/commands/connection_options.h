#pragma once

#include "dbui/connection_record.h"

#include <string>

namespace dbapi::tool {
// What the commands that write stored connections have in common.

/// The path of a file from the root: whoever uses the connection later may stand in another folder.
std::string absolute_path(const std::string& file);

/// Throws `CommandFailure` when there is no folder for the file: a database is made where there is
/// none, but not the folder that it is to stand in.
void check_folder(const std::string& file);

/// Throws `CommandFailure` when a record as it was typed cannot be stored.
void check_record(const DbuiConnection& typed);

/// "the SQLite file "/data/lab.db"", or the database of a server.
std::string target_of(const DbuiConnection& record);

/// Why a text is no port of a server; empty when it is one.
std::string port_fault(const std::string& given);

/// Reads a password from standard input, or asks for it on the terminal where there is one. Never
/// from the command line, which every user of the machine can read.
std::string read_password(const std::string& user, const std::string& host, bool fromInput);

/// The advice of the layer at which a connection fails, on a line of its own; empty when it works,
/// or fails at its schema, whose own error says what to do.
std::string advice_of_diagnosis(const DbuiConnection& record);

/// Throws `CommandFailure` for a change of the stored list that failed. Tells first why the list
/// cannot be written, for then nothing else was tried, and otherwise the advice.
[[noreturn]] void throw_storing_failure(const std::string& errors, const std::string& advice);
} // namespace dbapi::tool
