#pragma once

#include <string>

/// One stored database connection, as the user named and typed it. A plain value; every text is
/// UTF-8, and none is checked here.
class DbuiConnection
{
public:
    DbuiConnection() = default;
    /// Takes the texts as they are; the password is the typed one.
    DbuiConnection(
        const std::string& connectionName,
        const std::string& dbDriverName,
        const std::string& hostname,
        const std::string& port,
        const std::string& databaseName,
        const std::string& databaseUsername,
        const std::string& databasePassword);

    /// Sets the password in the form that stands in the connections file. It is turned back only
    /// when `get_databasePassword` asks for it, by the user name, connection name, host and port of
    /// the record.
    void setScrambledPassword(const std::string& text);

    /// Empties every field but the leading one, which stays, and sets the driver to "QSQLITE".
    void clear();

    // The published getters have names of their own style.
    // NOLINTBEGIN(readability-identifier-naming)
    /// The name under which the connection is looked up.
    [[nodiscard]] std::string get_connectionName() const { return connectionName_; }

    /// The name of the Qt driver: "QSQLITE" or "QMYSQL"; not checked here.
    [[nodiscard]] std::string get_dbDriverName() const { return dbDriverName_; }

    /// The server's host; empty for SQLite.
    [[nodiscard]] std::string get_hostname() const { return hostname_; }

    /// The port as the user typed it.
    [[nodiscard]] std::string get_port_as_string() const { return port_; }

    /// The port as a number; -1 when the text is empty or not a whole decimal number.
    [[nodiscard]] int get_port() const;
    /// Tells whether the port text is a whole decimal number. True for "-1" too, where `get_port`
    /// gives -1 as well.
    [[nodiscard]] bool port_is_a_number() const;

    /// The server's database, or the path of the SQLite file.
    [[nodiscard]] std::string get_databaseName() const { return databaseName_; }

    /// The user name on the server; empty for SQLite.
    [[nodiscard]] std::string get_databaseUsername() const { return databaseUsername_; }

    /// The password as typed, which is turned back here when the record was read from the file; it
    /// is scrambled in the connections file only.
    [[nodiscard]] std::string get_databasePassword() const;

    // NOLINTEND(readability-identifier-naming)

    /// Texts compare byte by byte, but ports as `get_port` gives them: "3306" equals "+3306", and
    /// no port equals one that is not a number. The leading field takes no part.
    friend bool operator==(const DbuiConnection& a, const DbuiConnection& b);

    friend bool operator!=(const DbuiConnection& a, const DbuiConnection& b) { return !(a == b); }

private:
    std::string leading_; // only ever copied
    std::string connectionName_;
    std::string dbDriverName_;
    std::string hostname_;
    std::string port_;
    std::string databaseName_;
    std::string databaseUsername_;
    std::string databasePassword_; // empty while the scrambled one stands for it
    std::string scrambledPassword_;
};
