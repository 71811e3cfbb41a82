#include "dbif/exception.h"

#include "dbif/host_string.h"

#include <QByteArray>

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

DBIF_Exception::DBIF_Exception(QString sql, QSqlError error, QString file, int line)
    : sql_(std::move(sql)), error_(std::move(error)), file_(std::move(file)), line_(line)
{}

namespace {
/// Puts the text into the buffer that all reports share. Published behaviour: a later report
/// overwrites an earlier one, to which pointers stay valid. A text that does not fit gets a larger
/// buffer; those before it are kept, and show as much of the text as they hold.
const char* in_shared_buffer(const QByteArray& text)
{
    static std::deque<std::vector<char>> buffers(1, std::vector<char>(std::size_t{1} << 14U));
    const auto size = static_cast<std::size_t>(text.size()) + 1;
    if (size > buffers.back().size()) {
        buffers.emplace_back(std::max(size, 2 * buffers.back().size()));
    }
    for (std::vector<char>& buffer : buffers) {
        const std::size_t shown = std::min(size, buffer.size());
        std::copy_n(text.constData(), shown, buffer.begin());
        buffer[shown - 1] = '\0';
    }
    return buffers.back().data();
}
} // namespace

const char* DBIF_Exception::what() const noexcept
{
    // The texts are put in with one arg() call, so that a "%1" inside the SQL stays as it is.
    return in_shared_buffer(
        QStringLiteral(
            "==> Error reported by database in file: %1 line: %2\n  Query: %3\n  Error reported: %4\n")
            .arg(file_, QString::number(line_), sql_, error_.text())
            .toUtf8());
}

namespace dbif {
void throw_error(const std::string& message, const char* file, int line, QSqlError::ErrorType type)
{
    throw DBIF_Exception(
        QString(), QSqlError(QString(), to_qt(message), type), QString::fromUtf8(file), line);
}
} // namespace dbif
