#pragma once

#include <QSqlError>
#include <QString>

#include <exception>

/// What the layer throws when a database statement fails or a database cannot be used.
class DBIF_Exception : public std::exception
{
public:
    /// `sql` is the failed statement; `file` and `line` are where the caller issued it.
    DBIF_Exception(QString sql, QSqlError error, QString file, int line);

    /// The whole report in 8-bit text. It stands in one buffer of the process that the next call,
    /// on any exception, overwrites: pointers from earlier calls stay valid and show the later
    /// report, or its beginning where that is longer than all before. Not to be called in two
    /// threads at once.
    [[nodiscard]] const char* what() const noexcept override;

    [[nodiscard]] const QString& sql() const { return sql_; }

    [[nodiscard]] const QSqlError& error() const { return error_; }

    [[nodiscard]] const QString& file() const { return file_; }

    [[nodiscard]] int line() const { return line_; }

private:
    QString sql_;
    QSqlError error_;
    QString file_;
    int line_;
};

namespace dbif {
/// Throws a `DBIF_Exception` for a fault that the layer found itself; `message` says what is wrong
/// and what to do.
[[noreturn]] void throw_error(
    const std::string& message,
    const char* file,
    int line,
    QSqlError::ErrorType type = QSqlError::StatementError);
} // namespace dbif
