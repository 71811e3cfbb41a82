#include "dbif/connection/write_retry.h"

#include "dbif/connection/managed_connection.h"
#include "dbif/host/exception.h"

#include <chrono>
#include <random>
#include <thread>

namespace dbif {
namespace {
constexpr int kAttempts = 5;
/// The pause before the second attempt; each further one is twice as long.
constexpr int kFirstPauseMilliseconds = 200;

bool is_worth_repeating(const DBIF_Connection& connection, const QSqlError& error)
{
    const SqlDialect& dialect = connection.inner().dialect();
    // The connection was lost a moment ago, and the server does not accept a new one yet.
    const bool isAway = dialect.isServer() && error.type() == QSqlError::ConnectionError;
    return isAway || dialect.isTransient(error) || dialect.isConnectionLost(error);
}

[[noreturn]] void give_up(const DBIF_Exception& exception)
{
    const QSqlError& error = exception.error();
    const QString text =
        QStringLiteral(
            "%1 (tried %2 times; these records are not stored. Another program may be writing, or "
            "the server be away: try again later.)")
            .arg(error.databaseText().trimmed())
            .arg(kAttempts);
    throw DBIF_Exception(
        exception.sql(), QSqlError(error.driverText(), text, error.type(), error.nativeErrorCode()),
        exception.file(), exception.line());
}

/// Pauses for a random time, so that two writers that met do not meet again.
void pause_before(int attempt)
{
    const int middle = kFirstPauseMilliseconds << (attempt - 2);
    std::random_device random;
    std::uniform_int_distribution<int> around(middle / 2, middle + middle / 2);
    std::this_thread::sleep_for(std::chrono::milliseconds(around(random)));
}

/// Does the work. False when it failed and is worth another attempt.
bool is_done(const DBIF_Connection& connection, const std::function<void()>& work, int attempt)
{
    try {
        work();
        return true;
    } catch (const DBIF_Exception& exception) {
        if (!is_worth_repeating(connection, exception.error())) {
            throw;
        }
        if (attempt == kAttempts) {
            give_up(exception);
        }
        return false;
    }
}
} // namespace

void write_with_retries(const DBIF_Connection& connection, const std::function<void()>& work)
{
    for (int attempt = 1; !is_done(connection, work, attempt);) {
        pause_before(++attempt);
    }
}
} // namespace dbif
