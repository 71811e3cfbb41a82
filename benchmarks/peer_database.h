#pragma once

#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {
class PeerDatabase;

/// A statement of the database's C client. Parameters count from 1, columns from 0. Members throw
/// `std::runtime_error` on a database error.
class PeerStatement
{
public:
    PeerStatement(PeerDatabase& database, std::string_view sql);
    ~PeerStatement();
    PeerStatement(const PeerStatement&) = delete;
    PeerStatement& operator=(const PeerStatement&) = delete;

    PeerStatement& bind(int parameter, long long value);
    PeerStatement& bind(int parameter, double value);
    /// The text has to live until the statement has run.
    PeerStatement& bind(int parameter, std::string_view value);
    PeerStatement& bindNull(int parameter);

    bool step();
    /// Runs the statement to its end and makes it ready for other values.
    void run();

    [[nodiscard]] int columns() const;
    [[nodiscard]] int integer(int column) const;
    /// The cell as text: a number as `std::to_chars` writes the double, nothing for NULL.
    [[nodiscard]] std::string text(int column) const;

private:
    PeerDatabase& database_;
    sqlite3_stmt* statement_ = nullptr;
};

/// An SQLite file read and written without the library, as a program of its own would do it. The
/// settings of the connection are SQLite's own, as they are for the library's connections.
class PeerDatabase
{
public:
    /// Creates the file when it is missing.
    explicit PeerDatabase(const std::string& path);
    ~PeerDatabase();
    PeerDatabase(const PeerDatabase&) = delete;
    PeerDatabase& operator=(const PeerDatabase&) = delete;

    void execute(const std::string& sql);

    [[noreturn]] void fail(const std::string& sql) const;

    [[nodiscard]] sqlite3* handle() const { return handle_; }

private:
    sqlite3* handle_ = nullptr;
};
} // namespace bench
