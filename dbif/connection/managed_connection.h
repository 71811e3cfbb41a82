#pragma once

#include "dbif/connection/connection.h"
#include "dbif/engine/sql_dialect.h"

#include <functional>
#include <memory>
#include <vector>

namespace dbif {
class ReadTrace;

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

/// The open connection that the copies of a handle share, with the operations that are for these
/// libraries and not for hosts. `handle.inner()` leads here. One thread at a time; operations that
/// need an open connection throw `DBIF_Exception` with the last error when there is none.
class DBIF_Connection::ManagedConnection
{
    Q_DISABLE_COPY_MOVE(ManagedConnection)

public:
    /// Opens the database; `isValid` and `lastError` tell whether it did.
    ManagedConnection(dbif::ConnectionParameters parameters, dbif::MissingFile missingFile);
    /// Closes it.
    ~ManagedConnection();

    [[nodiscard]] bool isValid() const { return session_ != nullptr; }

    [[nodiscard]] const QSqlError& lastError() const { return lastError_; }

    /// The published operations of the same names.
    QSqlQuery query(const QString& sql, const char* file, int line);
    void beginTransaction();
    void endTransaction();

    [[nodiscard]] bool isInTransaction() const { return isInTransaction_; }

    void initializeSchemaIfMissing();

    [[nodiscard]] const dbif::SqlDialect& dialect() const;

    /// Qt's handle of the connection; one that is not valid when none is open.
    [[nodiscard]] QSqlDatabase database() const { return database_; }

    /// The connection as the database's own client sees it. Valid until the connection closes or is
    /// opened anew.
    [[nodiscard]] dbif::SqlSession& session() const;
    /// Prepares a statement of the database's own client, which ends before the connection does.
    [[nodiscard]] std::unique_ptr<dbif::NativeStatement> prepare(const dbif::SqlText& sql) const;

    /// Attaches the trace that notes the statements read through the connection from now on; null
    /// detaches it. The caller keeps the trace and detaches it before it ends.
    void setTrace(dbif::ReadTrace* trace) { trace_ = trace; }

    [[nodiscard]] dbif::ReadTrace* trace() const { return trace_; }

    /// Begins a transaction that may write. Ended by one of the two below: `commitTransaction`
    /// throws, and leaves the transaction open, when the engine refuses to commit;
    /// `rollbackTransaction` never throws.
    void beginWriteTransaction();
    void commitTransaction();
    void rollbackTransaction();

    /// Runs a statement that yields no rows; `file` and `line` as for `query`.
    void execute(const dbif::SqlText& sql, const char* file, int line);
    /// Runs a clean-up statement that an engine refuses while rows are being read: at once if
    /// possible, otherwise when a read transaction begins or ends or the next such statement comes.
    /// Its errors are not reported; a statement that never succeeds goes with the connection.
    void executeWhenIdle(const dbif::SqlText& sql) noexcept;

    /// See `ChangeToken`. Costs a microsecond on SQLite; unknown on a server.
    [[nodiscard]] dbif::ChangeToken changeToken() const;
    /// Tells whether the SQLite file at the path is still the one that was opened. Costs about as
    /// much.
    [[nodiscard]] dbif::FileState fileState() const;

    /// The state that a library above keeps with this connection, made by `make` on first use. The
    /// connection owns it and drops it when it closes or is opened anew.
    dbif::ConnectionAttachment&
    attachment(const std::function<std::unique_ptr<dbif::ConnectionAttachment>()>& make);

private:
    void open();
    void close();
    bool reopen();
    /// Runs the statements that wait until nothing is read; those that still cannot run go on
    /// waiting.
    void runWaiting();
    /// Reaches a server that closed the connection anew, once; the caller repeats its statement.
    bool reopenAfter(const QSqlError& error);
    /// Reaches a server anew that closed the connection and could not be reached since.
    bool reopenLost();
    /// The error of a statement. A connection to a file cannot break, but Qt's driver reports
    /// whatever SQLite refuses as a connection error.
    [[nodiscard]] QSqlError statementError(const QSqlError& error) const;
    /// The error of opening, with the path of an SQLite file, which SQLite itself does not name.
    [[nodiscard]] QSqlError openingError(const QSqlError& error) const;
    bool isFileUsable(dbif::MissingFile missingFile);

    dbif::ConnectionParameters parameters_;
    const dbif::SqlDialect* dialect_ = nullptr;
    QString name_;
    QSqlDatabase database_;
    QSqlError lastError_;
    std::unique_ptr<dbif::SqlSession> session_;
    std::unique_ptr<dbif::ConnectionAttachment> attachment_;
    dbif::ReadTrace* trace_ = nullptr;
    std::vector<dbif::SqlText> waiting_;
    bool isInTransaction_ = false;
    bool isLost_ = false;
};
