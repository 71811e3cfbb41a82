#pragma once

#include <QSqlError>
#include <QString>

#include <exception>

/// The exception of these libraries: a database statement failed, a database cannot be used, or an
/// argument is wrong.
class DBIF_Exception : public std::exception
{
public:
    /// `sql` is the failed statement, empty when no statement was run; `file` and `line` are where
    /// the caller issued it.
    DBIF_Exception(QString sql, QSqlError error, QString file, int line);

    /// The whole report in UTF-8: file, line, statement and error. It stands in one buffer of the
    /// process that the next call, on any exception, overwrites: pointers from earlier calls stay
    /// valid and show the later report, or its beginning where that is longer than all before. Not
    /// to be called in two threads at once; the getters below may be.
    [[nodiscard]] const char* what() const noexcept override;

    /// The failed statement; empty when no statement was run.
    [[nodiscard]] const QString& sql() const { return sql_; }

    /// The database's error, or the library's own message as its text.
    [[nodiscard]] const QSqlError& error() const { return error_; }

    /// The source file and line of the caller.
    [[nodiscard]] const QString& file() const { return file_; }

    [[nodiscard]] int line() const { return line_; }

private:
    QString sql_;
    QSqlError error_;
    QString file_;
    int line_;
};

namespace dbif {
/// Throws a `DBIF_Exception` for a fault that the library found itself, without a statement.
/// `message` says what is wrong and what to do; it becomes the text of the exception's error.
[[noreturn]] void throw_error(
    const std::string& message,
    const char* file,
    int line,
    QSqlError::ErrorType type = QSqlError::StatementError);
} // namespace dbif
