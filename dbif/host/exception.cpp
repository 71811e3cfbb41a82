#include "dbif/host/exception.h"

#include "dbif/host/host_string.h"

#include <utility>

DBIF_Exception::DBIF_Exception(QString sql, QSqlError error, QString file, int line)
    : sql_(std::move(sql)), error_(std::move(error)), file_(std::move(file)), line_(line)
{}

const char* DBIF_Exception::what() const noexcept
{
    // Published behaviour: one buffer for the process. It is a global by that contract.
    static QByteArray buffer;
    // The texts are put in with one arg() call, so that a "%1" inside the SQL stays as it is.
    buffer =
        QStringLiteral(
            "==> Error reported by database in file: %1 line: %2\n  Query: %3\n  Error reported: %4\n")
            .arg(file_, QString::number(line_), sql_, error_.text())
            .toUtf8();
    return buffer.constData();
}

namespace dbif {
void throw_error(const std::string& message, const char* file, int line, QSqlError::ErrorType type)
{
    throw DBIF_Exception(
        QString(), QSqlError(QString(), to_qt(message), type), QString::fromUtf8(file), line);
}
} // namespace dbif
