#include "dbui/mysql_database.h"

#include "dbif/engine/sql_dialect.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbui/connection_open.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace {
constexpr const char* kDriver = "QMYSQL";

/// The name quoted, so that it is taken literally in any SQL mode, reserved words included.
QString quoted(const std::string& name)
{
    QString text = dbif::to_qt(name);
    text.replace(QLatin1Char('`'), QLatin1String("``"));
    return QLatin1Char('`') + text + QLatin1Char('`');
}

/// Creates the database. False when the server cannot be reached. Whether the database was created
/// shows when it is opened; `refusal` gets the server's message where it was not.
bool create_database(const DbuiConnection& record, std::string* refusal)
{
    QSqlDatabase server = QSqlDatabase::addDatabase(QLatin1String(kDriver));
    dbif::mysql_dialect().configure(
        server, {kDriver,
                 record.get_hostname(),
                 {},
                 record.get_databaseUsername(),
                 record.get_databasePassword(),
                 record.get_port()});
    if (!server.open()) {
        return false;
    }
    {
        QSqlQuery query(server);
        if (!query.exec(
                QLatin1String("CREATE DATABASE IF NOT EXISTS ") +
                quoted(record.get_databaseName()))) {
            *refusal = dbif::to_utf8(query.lastError().databaseText()) + "\n";
        }
    }
    server.close();
    return true;
}
} // namespace

bool dbui_is_connection_invalid_due_to_mysql_database_unknown(const DbuiConnection& record)
{
    if (record.get_dbDriverName() != kDriver) {
        return false;
    }
    DBIF_Connection connection = dbui::blank_connection();
    std::string unused;
    dbui_make_dbif_connection_object(record, &connection, &unused);
    return dbui::is_database_unknown(record, connection);
}

namespace dbui {
bool is_database_unknown(const DbuiConnection& record, const DBIF_Connection& connection)
{
    const QSqlError error = connection.lastError();
    return record.get_dbDriverName() == kDriver && !connection.isValid() && error.isValid() &&
           error.type() == QSqlError::ConnectionError &&
           error.databaseText().trimmed().startsWith(
               QLatin1String("Unknown database"), Qt::CaseInsensitive);
}
} // namespace dbui

bool dbui_create_mysql_database_for_connection(const DbuiConnection& record, std::string* error)
{
    dbif::clear_error(error);
    std::string detail;
    const bool reached = create_database(record, &detail);
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    if (!reached) {
        dbif::deliver_error(
            error,
            "Failed to create a connection to the MySQL database server at given hostname '" +
                record.get_hostname() + "'.\n");
        return false;
    }
    DBIF_Connection connection = dbui::blank_connection();
    std::string fault;
    dbui_make_dbif_connection_object(record, &connection, &fault);
    if (!connection.isValid()) {
        // The server's reason, or else, when the database is there, why it could not be filled.
        detail += fault;
        dbif::deliver_error(
            error,
            "Create MySQL Database Error: Failed to create the MySQL database and open a valid "
            "database connection.\n" +
                detail);
        return false;
    }
    return true;
}
