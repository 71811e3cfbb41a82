#include "dbif/connection/managed_connection.h"

#include "dbif/engine/read_trace.h"
#include "dbif/host/host_string.h"
#include "dbif/host/qt_application.h"
#include "dbif/schema/schema.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTimeZone>
#include <QUuid>
#include <QVariant>

namespace {
QSqlError connection_error(const QString& text)
{
    return QSqlError(QString(), text, QSqlError::ConnectionError);
}
} // namespace

DBIF_Connection::ManagedConnection::ManagedConnection(
    dbif::ConnectionParameters parameters,
    dbif::MissingFile missingFile)
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

DBIF_Connection::ManagedConnection::~ManagedConnection()
{
    close();
    if (!name_.isEmpty()) {
        QSqlDatabase::removeDatabase(name_);
    }
}

void DBIF_Connection::ManagedConnection::open()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(dbif::to_qt(parameters_.driver), name_);
    if (!database.isValid()) {
        lastError_ = connection_error(QStringLiteral("The Qt SQL driver \"%1\" is not installed.")
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
    database_ = database;
}

void DBIF_Connection::ManagedConnection::close()
{
    // Whatever holds prepared statements goes before the connection that they belong to.
    attachment_.reset();
    session_.reset();
    waiting_.clear();
    database_ = QSqlDatabase();
}

bool DBIF_Connection::ManagedConnection::reopen()
{
    close();
    QSqlDatabase::removeDatabase(name_);
    open();
    return isValid();
}

void DBIF_Connection::ManagedConnection::runWaiting()
{
    std::erase_if(waiting_, [this](const dbif::SqlText& sql) {
        return QSqlQuery(database_).exec(sql.toQt());
    });
}

bool DBIF_Connection::ManagedConnection::reopenAfter(const QSqlError& error)
{
    if (dialect_ == nullptr || isInTransaction_ || !dialect_->isConnectionLost(error)) {
        return false;
    }
    isLost_ = true;
    return reopen();
}

bool DBIF_Connection::ManagedConnection::reopenLost()
{
    return isLost_ && !isInTransaction_ && reopen();
}

QSqlError DBIF_Connection::ManagedConnection::statementError(const QSqlError& error) const
{
    return dialect_->isServer() || error.type() != QSqlError::ConnectionError
               ? error
               : QSqlError(
                     error.driverText(), error.databaseText(), QSqlError::StatementError,
                     error.nativeErrorCode());
}

QSqlError DBIF_Connection::ManagedConnection::openingError(const QSqlError& error) const
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

bool DBIF_Connection::ManagedConnection::isFileUsable(dbif::MissingFile missingFile)
{
    const QFileInfo file(dbif::to_qt(parameters_.database));
    if (parameters_.database.empty()) {
        lastError_ = connection_error(QStringLiteral("The connection names no SQLite file."));
    } else if (missingFile != dbif::MissingFile::Create && !file.exists()) {
        lastError_ = connection_error(
            QStringLiteral("The SQLite file \"%1\" does not exist.").arg(file.filePath()));
    } else if (file.isDir()) {
        lastError_ = connection_error(
            QStringLiteral("\"%1\" is a folder, not an SQLite file.").arg(file.filePath()));
    } else if (file.exists() && !file.isFile()) {
        // Opening a pipe waits for whoever writes into it, and a device takes everything.
        lastError_ =
            connection_error(QStringLiteral("\"%1\" is no regular file, so it is no SQLite file.")
                                 .arg(file.filePath()));
    } else if (missingFile != dbif::MissingFile::Create && file.size() == 0) {
        lastError_ = connection_error(
            QStringLiteral("The SQLite file \"%1\" is empty (0 bytes).").arg(file.filePath()));
    } else {
        return true;
    }
    return false;
}

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

QSqlQuery DBIF_Connection::ManagedConnection::query(const QString& sql, const char* file, int line)
{
    if (!isValid() && !reopenLost()) {
        throw DBIF_Exception(sql, lastError_, QString::fromUtf8(file), line);
    }
    const QueryNote note(trace_, *dialect_, database_, sql);
    for (bool isRetry = false;; isRetry = true) {
        QSqlQuery query(database_);
        query.setForwardOnly(false);
        if (query.exec(sql)) {
            return query;
        }
        const QSqlError error = statementError(query.lastError());
        query.clear();
        lastError_ = error;
        if (isRetry || !reopenAfter(error)) {
            throw DBIF_Exception(sql, error, QString::fromUtf8(file), line);
        }
    }
}

void DBIF_Connection::ManagedConnection::execute(
    const dbif::SqlText& sql,
    const char* file,
    int line)
{
    query(sql.toQt(), file, line);
}

void DBIF_Connection::ManagedConnection::executeWhenIdle(const dbif::SqlText& sql) noexcept
{
    waiting_.push_back(sql);
    runWaiting();
}

void DBIF_Connection::ManagedConnection::beginTransaction()
{
    runWaiting();
    execute(dialect().beginRead(), __FILE__, __LINE__);
    isInTransaction_ = true;
}

void DBIF_Connection::ManagedConnection::beginWriteTransaction()
{
    execute(dialect().beginWrite(), __FILE__, __LINE__);
    isInTransaction_ = true;
}

void DBIF_Connection::ManagedConnection::commitTransaction()
{
    execute(dbif::SqlText("COMMIT"), __FILE__, __LINE__);
    isInTransaction_ = false;
}

void DBIF_Connection::ManagedConnection::endTransaction()
{
    if (!isInTransaction_) {
        return;
    }
    // Runs in destructors: a failure leaves the connection to the next statement's error.
    isInTransaction_ = false;
    QSqlQuery(database_).exec(QStringLiteral("COMMIT"));
    runWaiting();
}

void DBIF_Connection::ManagedConnection::rollbackTransaction()
{
    isInTransaction_ = false;
    QSqlQuery(database_).exec(QStringLiteral("ROLLBACK"));
}

void DBIF_Connection::ManagedConnection::initializeSchemaIfMissing()
{
    if (!isValid()) {
        throw DBIF_Exception(QString(), lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    dbif::initialize_schema(
        database_, dialect(),
        parameters_.isReadOnly ? dbif::EmptyDatabase::Refuse : dbif::EmptyDatabase::Create);
}

const dbif::SqlDialect& DBIF_Connection::ManagedConnection::dialect() const
{
    if (dialect_ == nullptr) {
        throw DBIF_Exception(QString(), lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    return *dialect_;
}

dbif::SqlSession& DBIF_Connection::ManagedConnection::session() const
{
    if (!isValid()) {
        throw DBIF_Exception(QString(), lastError_, QStringLiteral(__FILE__), __LINE__);
    }
    return *session_;
}

std::unique_ptr<dbif::NativeStatement>
DBIF_Connection::ManagedConnection::prepare(const dbif::SqlText& sql) const
{
    return trace_ == nullptr ? session().prepare(sql)
                             : trace_->prepare(session(), dialect(), database_, sql);
}

dbif::ChangeToken DBIF_Connection::ManagedConnection::changeToken() const
{
    return session().changeToken();
}

dbif::FileState DBIF_Connection::ManagedConnection::fileState() const
{
    return session().fileState();
}

dbif::ConnectionAttachment& DBIF_Connection::ManagedConnection::attachment(
    const std::function<std::unique_ptr<dbif::ConnectionAttachment>()>& make)
{
    if (attachment_ == nullptr) {
        attachment_ = make();
    }
    return *attachment_;
}

DBIF_Connection::DBIF_Connection(
    const char* driver,
    const char* host,
    const char* database,
    const char* user,
    const char* password,
    int port,
    dbif::MissingFile missingFile)
    : managed_(std::make_shared<ManagedConnection>(
          dbif::ConnectionParameters{
              driver, host, database, user, password, port,
              missingFile == dbif::MissingFile::ReadOnly},
          missingFile))
{}

bool DBIF_Connection::isValid() const
{
    return managed_->isValid();
}

QSqlError DBIF_Connection::lastError() const
{
    return managed_->lastError();
}

QSqlQuery DBIF_Connection::query(const QString& sql, int /*option*/, const char* file, int line)
{
    return managed_->query(sql, file, line);
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

void DBIF_Connection::beginTransaction()
{
    managed_->beginTransaction();
}

void DBIF_Connection::endTransaction()
{
    managed_->endTransaction();
}

bool DBIF_Connection::isInTransaction() const
{
    return managed_->isInTransaction();
}

void DBIF_Connection::initializeSchemaIfMissing()
{
    managed_->initializeSchemaIfMissing();
}
