#include "dbif/write_retry.h"

#include "dbif/exception.h"

#include <chrono>
#include <thread>

namespace dbif {
namespace {
constexpr int kAttempts = 5;
/// Before the second attempt; each further pause is twice as long, 1.5 s in all.
constexpr std::chrono::milliseconds kFirstPause(100);

bool is_worth_repeating(const DBIF_Connection& connection, const QSqlError& error)
{
    const SqlDialect& dialect = connection.dialect();
    // A connection that was lost a moment ago, and that the server does not take again yet.
    const bool isAway = dialect.isServer() && error.type() == QSqlError::ConnectionError;
    return isAway || dialect.isTransient(error) || dialect.isConnectionLost(error);
}

[[noreturn]] void give_up(const DBIF_Exception& exception)
{
    const QSqlError& error = exception.error();
    const QString text =
        QStringLiteral("%1 (tried %2 times; nothing is stored. Another program may be writing, or "
                       "the server be away: try again later.)")
            .arg(error.databaseText().trimmed())
            .arg(kAttempts);
    throw DBIF_Exception(
        exception.sql(), QSqlError(error.driverText(), text, error.type(), error.nativeErrorCode()),
        exception.file(), exception.line());
}
} // namespace

void write_with_retries(DBIF_Connection connection, const std::function<void()>& work)
{
    std::chrono::milliseconds pause = kFirstPause;
    for (int attempt = 1;; ++attempt) {
        try {
            work();
            return;
        } catch (const DBIF_Exception& exception) {
            if (!is_worth_repeating(connection, exception.error())) {
                throw;
            }
            if (attempt == kAttempts) {
                give_up(exception);
            }
        }
        std::this_thread::sleep_for(pause);
        pause *= 2;
    }
}
} // namespace dbif
