#pragma once

#include <set>
#include <string>

namespace dbapi {
// Stored database connections. Texts are trimmed. `errors` is emptied first; on failure it receives
// the message, or the standard error stream does when it is null. A failed call changes nothing.

/// Stores a connection under a new name, after it has been opened for a test. `driver` is "SQLITE"
/// or "MYSQL" in any letter case; for SQLite `database` is the path of the file, which is created
/// when it is missing, for MySQL a database of the server, likewise. `port` may be empty.
bool db_create_connection(
    const std::string& driver,
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors);
bool db_create_mysql_connection(
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors);
bool db_create_sqlite_connection(
    const std::string& name,
    const std::string& file,
    std::string* errors);

/// Forgets a stored connection; its database stays.
bool db_remove_connection(const std::string& name, std::string* errors);

/// The names of all stored connections; none when their file cannot be read.
void db_get_connections(std::set<std::string>* names);
} // namespace dbapi
