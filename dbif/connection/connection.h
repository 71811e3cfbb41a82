#pragma once

#include "dbif/host/exception.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>

#include <memory>

namespace dbif {
/// The treatment of an SQLite file that does not exist, or has no content at all, when a connection
/// is opened.
enum class MissingFile {
    Create,
    Fail,
    ReadOnly ///< fails too, and a file that exists is opened for reading only
};
} // namespace dbif

/// A handle to an open database connection that all its copies share; the connection closes with
/// the last of them. Handles may be copied, assigned and destroyed in any thread. Everything else
/// is called by one thread at a time per connection.
class DBIF_Connection
{
public:
    class ManagedConnection;

    /// Opens `database` through the Qt SQL driver named `driver`: "QSQLITE", for which `database`
    /// is the path of the file and the rest is not used, or "QMYSQL" with a database of the server
    /// at `host` and `port`. No text may be null; all are UTF-8. Makes a `QCoreApplication` when
    /// there is none. Does not throw: when the database does not open, or the driver is not known,
    /// the handle is not valid and `lastError` says why.
    DBIF_Connection(
        const char* driver,
        const char* host,
        const char* database,
        const char* user,
        const char* password,
        int port,
        dbif::MissingFile missingFile = dbif::MissingFile::Create);

    /// Tells whether the connection is open. A server that was lost and could not be reached again
    /// leaves it closed; the next statement tries once more.
    [[nodiscard]] bool isValid() const;

    /// Why the connection did not open, or the error of the last statement that failed. A later
    /// statement that succeeds does not clear it.
    [[nodiscard]] QSqlError lastError() const;

    /// Runs one statement and returns its result, before the first row. The result must end before
    /// the connection closes. Throws `DBIF_Exception` with the statement, the database's error, and
    /// the caller's `file` and `line`. When a server has closed the connection since the last
    /// statement, it is opened anew and the statement is run once more, unless a transaction is
    /// open. `option` is not used.
    QSqlQuery query(const QString& sql, int option, const char* file, int line);

    /// The single date and time, UTC, that the statement yields; a null one when it yields no row,
    /// NULL, or a text that is no ISO 8601 time. Throws as `query` does.
    QDateTime queryDateTime(const QString& sql, int option, const char* file, int line);

    /// Begins a transaction in which reads see one state of the database. Transactions do not nest.
    /// Throws `DBIF_Exception` when none can be begun.
    void beginTransaction();
    /// Commits it. Does nothing when none is open, and does not throw: an error shows at the next
    /// statement.
    void endTransaction();
    [[nodiscard]] bool isInTransaction() const;

    /// Creates the measurement schema in a database that has no tables. Throws `DBIF_Exception`,
    /// and changes nothing, when the database belongs to another program or was written by a newer
    /// version; throws also when the connection is not valid or a statement fails.
    void initializeSchemaIfMissing();

    /// The shared connection, for the libraries of this project; hosts have no use for it.
    [[nodiscard]] ManagedConnection& inner() const { return *managed_; }

    /// Two handles are equal when they share one connection.
    friend bool operator==(const DBIF_Connection& a, const DBIF_Connection& b)
    {
        return a.managed_ == b.managed_;
    }

private:
    std::shared_ptr<ManagedConnection> managed_;
};
