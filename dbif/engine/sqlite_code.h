#pragma once

#include <QSqlError>

namespace dbif {
/// The primary result codes of SQLite that these libraries tell apart.
enum class SqliteCode {
    Busy = 5,
    Locked = 6,
    ReadOnly = 8,
    Corrupt = 11,
    CannotOpen = 14,
    NotADatabase = 26
};

/// The primary result code of an SQLite error: the lowest byte of the extended one. It may be one
/// that `SqliteCode` does not name.
inline SqliteCode sqlite_code(const QSqlError& error)
{
    constexpr int kPrimary = 0xFF;
    return static_cast<SqliteCode>(error.nativeErrorCode().toInt() & kPrimary);
}
} // namespace dbif
