#include "dbif/write/write_transaction.h"

#include "dbif/connection/column_store.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/connection/newest_time.h"
#include "dbif/host/host_string.h"

namespace dbif {
WriteTransaction::WriteTransaction(DBIF_Connection connection) : connection_(std::move(connection))
{
    connection_.inner().beginWriteTransaction();
    try {
        // The row that every writer changes: it keeps a second one waiting (or, on a cluster, makes
        // its commit fail).
        connection_.inner().execute(
            SqlText("UPDATE database_info SET writes = writes + 1 WHERE id = 1"), __FILE__,
            __LINE__);
        const QDateTime newest = newest_time(connection_);
        QDateTime now = QDateTime::currentDateTimeUtc();
        if (newest.isValid() && now <= newest) {
            now = newest.addMSecs(1);
        }
        stamp_ = stored_time(now);
        for (const SqlText& setting : connection_.inner().dialect().writeSettings(true)) {
            connection_.inner().execute(setting, __FILE__, __LINE__);
        }
    } catch (const DBIF_Exception&) {
        connection_.inner().rollbackTransaction();
        throw;
    }
    isOpen_ = true;
}

WriteTransaction::~WriteTransaction()
{
    if (isOpen_) {
        connection_.inner().rollbackTransaction();
        // The store may hold definitions of keys that were rolled back.
        ColumnStore::of(connection_).refresh();
    }
    for (const SqlText& setting : connection_.inner().dialect().writeSettings(false)) {
        setAsBefore(setting);
    }
}

void WriteTransaction::setAsBefore(const SqlText& setting)
{
    try {
        connection_.inner().execute(setting, __FILE__, __LINE__);
    } catch (const DBIF_Exception&) {
        // A setting that fails leaves the connection as it is.
    }
}

void WriteTransaction::commit(const std::string& stampedTable, int stampedId)
{
    try {
        connection_.inner().commitTransaction();
    } catch (const DBIF_Exception& exception) {
        if (!isStoredAfter(exception, stampedTable, stampedId)) {
            throw;
        }
    }
    isOpen_ = false;
    ColumnStore::of(connection_).refresh();
}

bool WriteTransaction::isStoredAfter(
    const DBIF_Exception& failure,
    const std::string& table,
    int id)
{
    // A commit that a file, or a server, refuses for such a reason is taken back. After any other
    // error of a server, such as a connection that broke in the middle of the answer, it may have
    // been stored.
    const SqlDialect& dialect = connection_.inner().dialect();
    if (!dialect.isServer() || dialect.isTransient(failure.error()) || table.empty()) {
        return false;
    }
    connection_.inner().rollbackTransaction();
    isOpen_ = false;
    ColumnStore::of(connection_).refresh();
    try {
        // No other transaction has our stamp.
        SqlText sql;
        sql << "SELECT id FROM " << SqlName(table) << " WHERE id = " << id
            << " AND modified_time = " << SqlLiteral(stamp_);
        return connection_.query(sql.toQt(), 0, __FILE__, __LINE__).next();
    } catch (const DBIF_Exception& exception) {
        throw_error(
            "The connection was lost while the records were made durable, and the server does not answer (" +
                to_utf8(exception.error().databaseText()) +
                "). Either all of them are stored or none: once it answers again, look for those of the time " +
                stamp_ + ".",
            __FILE__, __LINE__, QSqlError::TransactionError);
    }
}

long long writes_so_far(DBIF_Connection& connection)
{
    const auto row =
        connection.inner().prepare(SqlText("SELECT writes FROM database_info WHERE id = 1"));
    return row->step() ? row->integer(0) : 0;
}
} // namespace dbif
