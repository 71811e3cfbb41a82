#pragma once

#include <set>
#include <string>

namespace dbapi {
// Stored database connections: a name for an SQLite file or for a database of a MySQL server, by
// which all other calls know it. docs/connections.md says where they are stored.
//
// Texts are UTF-8; blanks at both ends do not count. `errors` is emptied first; on failure it
// receives the message, or the standard error stream does when it is null. A failed call stores
// nothing. Several programs may make these calls at once.

/// Stores a connection under a new name, after it has been opened for a test.
///
/// `driver` is "SQLITE" or "MYSQL" in any letter case. For SQLite, `database` is the path of the
/// file, and `host`, `user`, `password` and `port` are empty. For MySQL, `database` is a database
/// of the server; an empty `port` means 3306. A file or database that does not exist is created,
/// with the schema in it; an empty one gets the schema. The password is stored scrambled, which is
/// no protection.
///
/// False when the name is taken, when the database does not open or is none of ours, and when the
/// connections file cannot be written. A server that does not answer is given up after
/// 10 s.
bool db_create_connection(
    const std::string& driver,
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors);
/// The same for the driver "MYSQL".
bool db_create_mysql_connection(
    const std::string& name,
    const std::string& database,
    const std::string& host,
    const std::string& user,
    const std::string& password,
    const std::string& port,
    std::string* errors);
/// The same for the driver "SQLITE"; `file` is the path of the database.
bool db_create_sqlite_connection(
    const std::string& name,
    const std::string& file,
    std::string* errors);

/// Forgets a stored connection; its database stays. False when no connection has the name.
bool db_remove_connection(const std::string& name, std::string* errors);

/// Replaces the content of `names` by the names of all stored connections; none when their file is
/// missing or cannot be read.
void db_get_connections(std::set<std::string>* names);
} // namespace dbapi
