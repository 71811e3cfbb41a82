#pragma once

#include "dbif/engine/sql_dialect.h"
#include "dbif/host/exception.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>

#include <functional>
#include <memory>
#include <string>

namespace dbif {
class ReadTrace;

/// What opening a connection does when its SQLite file does not exist, or has no content at all.
enum class MissingFile { Create, Fail };

/// State that a library above keeps with one open connection, for as long as it is open.
class ConnectionAttachment
{
    Q_DISABLE_COPY_MOVE(ConnectionAttachment)

public:
    virtual ~ConnectionAttachment() = default;

protected:
    ConnectionAttachment() = default;
};
} // namespace dbif

/// A handle to an open database connection that all its copies share; the connection closes with
/// the last. Handles may be copied in any thread; the connection itself is used in one.
class DBIF_Connection
{
public:
    class ManagedConnection;

    /// Opens `database` (for "QSQLITE" the path of the file) through the Qt SQL driver named
    /// `driver`. Does not throw: `isValid` and `lastError` tell what became of it. Makes a
    /// `QCoreApplication` when there is none.
    DBIF_Connection(
        const char* driver,
        const char* host,
        const char* database,
        const char* user,
        const char* password,
        int port,
        dbif::MissingFile missingFile = dbif::MissingFile::Create);

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] QSqlError lastError() const;

    /// Runs one statement. Throws `DBIF_Exception` with `file` and `line`, the caller's place, when
    /// it fails. A server that closed the connection since the last statement is reached anew once,
    /// outside transactions. `option` is not used.
    QSqlQuery query(const QString& sql, int option, const char* file, int line);
    /// The single date and time, UTC, that the statement yields; a null one when it yields NULL or
    /// no row.
    QDateTime queryDateTime(const QString& sql, int option, const char* file, int line);

    /// One transaction at a time. `beginTransaction` starts one in which reads see one state of the
    /// database.
    void beginTransaction();
    void endTransaction();
    [[nodiscard]] bool isInTransaction() const;

    /// Creates the measurement schema in a database that has no tables. Throws `DBIF_Exception`,
    /// and changes nothing, when the database belongs to another program or was written by a newer
    /// version.
    void initializeSchemaIfMissing();

    // The rest is for the layer and the cache, not for hosts.

    [[nodiscard]] const dbif::SqlDialect& dialect() const;
    [[nodiscard]] QSqlDatabase database() const;
    [[nodiscard]] dbif::SqlSession& session() const;
    /// A statement of the database's own client.
    [[nodiscard]] std::unique_ptr<dbif::NativeStatement> prepare(const dbif::SqlText& sql) const;
    /// Attaches what notes the statements that are read through the connection from now on; null
    /// ends it. Not owned.
    void setTrace(dbif::ReadTrace* trace);
    [[nodiscard]] dbif::ReadTrace* trace() const;
    /// Ends a writing transaction: `commitTransaction` throws when it cannot be made durable.
    void beginWriteTransaction();
    void commitTransaction();
    void rollbackTransaction();
    void execute(const dbif::SqlText& sql, const char* file, int line);
    /// Runs a statement that clears up and that an engine refuses while rows are being read: at
    /// once if it can be, else when a transaction begins or ends, or another one is to be run.
    /// Does not throw.
    void executeWhenIdle(const dbif::SqlText& sql) noexcept;
    /// See `ChangeToken`. Costs a microsecond on SQLite; unknown on a server.
    [[nodiscard]] dbif::ChangeToken changeToken() const;
    /// Whether the SQLite file at the path is still the one that was opened. Costs about as much.
    [[nodiscard]] dbif::FileState fileState() const;
    /// The state that a library above keeps with this connection, made by `make` on first use.
    dbif::ConnectionAttachment&
    attachment(const std::function<std::unique_ptr<dbif::ConnectionAttachment>()>& make);

    friend bool operator==(const DBIF_Connection& a, const DBIF_Connection& b)
    {
        return a.managed_ == b.managed_;
    }

private:
    std::shared_ptr<ManagedConnection> managed_;
};
