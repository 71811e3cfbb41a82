#include "dbif/connection.h"

#include "dbif/host_string.h"
#include "dbif/qt_application.h"
#include "dbif/read_trace.h"
#include "dbif/schema.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDriver>
#include <QTimeZone>
#include <QUuid>
#include <QVariant>

namespace {
QSqlError connection_error(const QString& text)
{
    return QSqlError(QString(), text, QSqlError::ConnectionError);
}
} // namespace

class DBIF_Connection::ManagedConnection
{
    Q_DISABLE_COPY_MOVE(ManagedConnection)

public:
    ManagedConnection(dbif::ConnectionParameters parameters, dbif::MissingFile missingFile)
        : parameters_(std::move(parameters))
    {
        // A blank handle, or a driver that there is not, is an invalid connection like any other.
        dialect_ = dbif::dialect_for(parameters_.driver);
        if (dialect_ == nullptr) {
            lastError_ = connection_error(
                QStringLiteral(
                    "The database driver \"%1\" is not known. The drivers are SQLITE and MYSQL.")
                    .arg(dbif::to_qt(parameters_.driver)));
            return;
        }
        if (!dialect_->isServer() && !isFileUsable(missingFile)) {
            return;
        }
        dbif::make_application_if_missing();
        name_ = QUuid::createUuid().toString();
        open();
    }

    ~ManagedConnection()
    {
        close();
        if (!name_.isEmpty()) {
            QSqlDatabase::removeDatabase(name_);
        }
    }

    void open()
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(dbif::to_qt(parameters_.driver), name_);
        if (!database.isValid()) {
            lastError_ =
                connection_error(QStringLiteral("The Qt SQL driver \"%1\" is not installed.")
                                     .arg(dbif::to_qt(parameters_.driver)));
            return;
        }
        dialect_->configure(database, parameters_);
        if (!database.open()) {
            lastError_ = openingError(database.lastError());
            return;
        }
        lastError_ = dialect_->startSession(database);
        if (lastError_.isValid()) {
            lastError_ = openingError(lastError_);
            database.close();
            return;
        }
        try {
            session_ = dialect_->session(database);
        } catch (const DBIF_Exception& exception) {
            lastError_ = exception.error();
            database.close();
            return;
        }
        fileIdentity_ = dialect_->fileIdentity(parameters_.database);
        database_ = database;
    }

    void close()
    {
        // Whatever holds prepared statements goes before the connection that they belong to.
        attachment_.reset();
        session_.reset();
        waiting_.clear();
        database_ = QSqlDatabase();
    }

    /// Runs the statements that wait until nothing is read; those that still cannot run go on
    /// waiting.
    void runWaiting()
    {
        std::erase_if(waiting_, [this](const dbif::SqlText& sql) {
            return QSqlQuery(database_).exec(sql.toQt());
        });
    }

    /// A server that went away is reached anew, once; the caller repeats its statement.
    bool reopenAfter(const QSqlError& error)
    {
        if (dialect_ == nullptr || isInTransaction_ || !dialect_->isConnectionLost(error)) {
            return false;
        }
        isLost_ = true;
        return reopen();
    }

    /// Reaches a server anew that went away and could not be reached since.
    bool reopenLost() { return isLost_ && !isInTransaction_ && reopen(); }

    [[nodiscard]] bool isValid() const { return session_ != nullptr; }

    /// The error of a statement. There is no connection to a file that could break: Qt's driver
    /// calls whatever SQLite refuses so.
    [[nodiscard]] QSqlError statementError(const QSqlError& error) const
    {
        return dialect_->isServer() || error.type() != QSqlError::ConnectionError
                   ? error
                   : QSqlError(
                         error.driverText(), error.databaseText(), QSqlError::StatementError,
                         error.nativeErrorCode());
    }

    dbif::ConnectionParameters parameters_;
    const dbif::SqlDialect* dialect_ = nullptr;
    QString name_;
    QSqlDatabase database_;
    QSqlError lastError_;
    std::string fileIdentity_;
    std::unique_ptr<dbif::SqlSession> session_;
    std::unique_ptr<dbif::ConnectionAttachment> attachment_;
    dbif::ReadTrace* trace_ = nullptr;
    std::vector<dbif::SqlText> waiting_;
    bool isInTransaction_ = false;

private:
    bool reopen()
    {
        close();
        QSqlDatabase::removeDatabase(name_);
        open();
        return isValid();
    }

    bool isLost_ = false;

    /// SQLite does not say which file does not open.
    [[nodiscard]] QSqlError openingError(const QSqlError& error) const
    {
        if (dialect_->isServer()) {
            return error;
        }
        const QString reason =
            error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
        return QSqlError(
            error.driverText(),
            QStringLiteral("The SQLite file \"%1\" does not open: %2.")
                .arg(dbif::to_qt(parameters_.database), reason),
            error.type(), error.nativeErrorCode());
    }

    bool isFileUsable(dbif::MissingFile missingFile)
    {
        const QFileInfo file(dbif::to_qt(parameters_.database));
        if (parameters_.database.empty()) {
            lastError_ = connection_error(QStringLiteral("The connection names no SQLite file."));
        } else if (missingFile == dbif::MissingFile::Fail && !file.exists()) {
            lastError_ = connection_error(
                QStringLiteral("The SQLite file \"%1\" does not exist.").arg(file.filePath()));
        } else if (file.isDir()) {
            lastError_ = connection_error(
                QStringLiteral("\"%1\" is a folder, not an SQLite file.").arg(file.filePath()));
        } else {
            return true;
        }
        return false;
    }
};

namespace {
/// Notes a SELECT that Qt runs, for a trace if there is one.
class QueryNote
{
    Q_DISABLE_COPY_MOVE(QueryNote)

public:
    QueryNote(
        dbif::ReadTrace* trace,
        const dbif::SqlDialect& dialect,
        const QSqlDatabase& database,
        const QString& sql)
        : trace_(sql.startsWith(QStringLiteral("SELECT")) ? trace : nullptr)
    {
        if (trace_ != nullptr) {
            place_ = trace_->begin(dialect, database, dbif::to_utf8(sql));
            timer_.start();
        }
    }

    ~QueryNote()
    {
        if (trace_ != nullptr) {
            trace_->end(place_, 0, static_cast<double>(timer_.nsecsElapsed()) * 1e-9);
        }
    }

private:
    dbif::ReadTrace* trace_;
    std::size_t place_ = 0;
    QElapsedTimer timer_;
};
} // namespace

DBIF_Connection::DBIF_Connection(
    const char* driver,
    const char* host,
    const char* database,
    const char* user,
    const char* password,
    int port,
    dbif::MissingFile missingFile)
    : managed_(std::make_shared<ManagedConnection>(
          dbif::ConnectionParameters{driver, host, database, user, password, port},
          missingFile))
{}

bool DBIF_Connection::isValid() const
{
    return managed_->isValid();
}

QSqlError DBIF_Connection::lastError() const
{
    return managed_->lastError_;
}

QSqlQuery DBIF_Connection::query(const QString& sql, int /*option*/, const char* file, int line)
{
    if (!isValid() && !managed_->reopenLost()) {
        throw DBIF_Exception(sql, managed_->lastError_, QString::fromUtf8(file), line);
    }
    const QueryNote note(managed_->trace_, *managed_->dialect_, managed_->database_, sql);
    for (bool isRetry = false;; isRetry = true) {
        QSqlQuery query(managed_->database_);
        query.setForwardOnly(false);
        if (query.exec(sql)) {
            return query;
        }
        const QSqlError error = managed_->statementError(query.lastError());
        query.clear();
        managed_->lastError_ = error;
        if (isRetry || !managed_->reopenAfter(error)) {
            throw DBIF_Exception(sql, error, QString::fromUtf8(file), line);
        }
    }
}

QDateTime DBIF_Connection::queryDateTime(const QString& sql, int option, const char* file, int line)
{
    QSqlQuery result = query(sql, option, file, line);
    if (!result.next() || result.isNull(0)) {
        return {};
    }
    QDateTime time = QDateTime::fromString(result.value(0).toString(), Qt::ISODateWithMs);
    time.setTimeZone(QTimeZone::utc());
    return time;
}

void DBIF_Connection::execute(const dbif::SqlText& sql, const char* file, int line)
{
    query(sql.toQt(), 0, file, line);
}

void DBIF_Connection::executeWhenIdle(const dbif::SqlText& sql) noexcept
{
    managed_->waiting_.push_back(sql);
    managed_->runWaiting();
}

void DBIF_Connection::beginTransaction()
{
    managed_->runWaiting();
    execute(dialect().beginRead(), __FILE__, __LINE__);
    managed_->isInTransaction_ = true;
}

void DBIF_Connection::beginWriteTransaction()
{
    execute(dialect().beginWrite(), __FILE__, __LINE__);
    managed_->isInTransaction_ = true;
}

void DBIF_Connection::commitTransaction()
{
    execute(dbif::SqlText("COMMIT"), __FILE__, __LINE__);
    managed_->isInTransaction_ = false;
}

void DBIF_Connection::endTransaction()
{
    if (!managed_->isInTransaction_) {
        return;
    }
    // Runs in destructors: a failure leaves the connection to the next statement's error.
    managed_->isInTransaction_ = false;
    QSqlQuery(managed_->database_).exec(QStringLiteral("COMMIT"));
    managed_->runWaiting();
}

void DBIF_Connection::rollbackTransaction()
{
    managed_->isInTransaction_ = false;
    QSqlQuery(managed_->database_).exec(QStringLiteral("ROLLBACK"));
}

bool DBIF_Connection::isInTransaction() const
{
    return managed_->isInTransaction_;
}

void DBIF_Connection::initializeSchemaIfMissing()
{
    if (!isValid()) {
        throw DBIF_Exception(QString(), managed_->lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    dbif::initialize_schema(managed_->database_, dialect());
}

const dbif::SqlDialect& DBIF_Connection::dialect() const
{
    if (managed_->dialect_ == nullptr) {
        throw DBIF_Exception(QString(), managed_->lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    return *managed_->dialect_;
}

QSqlDatabase DBIF_Connection::database() const
{
    return managed_->database_;
}

dbif::SqlSession& DBIF_Connection::session() const
{
    if (!isValid()) {
        throw DBIF_Exception(QString(), managed_->lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    return *managed_->session_;
}

std::unique_ptr<dbif::NativeStatement> DBIF_Connection::prepare(const dbif::SqlText& sql) const
{
    dbif::ReadTrace* trace = managed_->trace_;
    return trace == nullptr ? session().prepare(sql)
                            : trace->prepare(session(), dialect(), managed_->database_, sql);
}

void DBIF_Connection::setTrace(dbif::ReadTrace* trace)
{
    managed_->trace_ = trace;
}

dbif::ReadTrace* DBIF_Connection::trace() const
{
    return managed_->trace_;
}

dbif::ChangeToken DBIF_Connection::changeToken() const
{
    return session().changeToken();
}

bool DBIF_Connection::isSameFile() const
{
    return managed_->dialect_ == nullptr ||
           managed_->dialect_->fileIdentity(managed_->parameters_.database) ==
               managed_->fileIdentity_;
}

dbif::ConnectionAttachment& DBIF_Connection::attachment(
    const std::function<std::unique_ptr<dbif::ConnectionAttachment>()>& make)
{
    if (managed_->attachment_ == nullptr) {
        managed_->attachment_ = make();
    }
    return *managed_->attachment_;
}
