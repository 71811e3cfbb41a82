#include "dbui/diagnosis/diagnosis_file.h"

#include "dbif/connection/managed_connection.h"
#include "dbif/engine/sqlite_code.h"
#include "dbif/host/host_string.h"
#include "dbui/diagnosis/diagnosis_content.h"

#include <QFileInfo>
#include <QVariant>

#include <array>
#include <fstream>
#include <unistd.h>

namespace dbui {
namespace {
using Layer = DiagnosisStep::Layer;

constexpr std::array kPlan{Layer::Record,      Layer::Folder, Layer::File,    Layer::Database,
                           Layer::JournalMode, Layer::Schema, Layer::Reading, Layer::Writing};

std::string quoted(const QString& path)
{
    return "\"" + dbif::to_utf8(path) + "\"";
}

void diagnose_record(const DbuiConnection& record, DiagnosisReport* report)
{
    const std::string path = record.get_databaseName();
    if (path.empty()) {
        report->fail(Layer::Record, "the connection names no SQLite file", "Name the file.");
    } else if (QFileInfo(dbif::to_qt(path)).isRelative()) {
        report->warn(
            Layer::Record, "the SQLite file \"" + path + "\", seen from the folder of each program",
            "Store the whole path, so that every program finds the same file.");
    } else {
        report->ok(Layer::Record, "the SQLite file \"" + path + "\"");
    }
}

void diagnose_folder(const QFileInfo& file, DiagnosisReport* report)
{
    const QString folder = file.absolutePath();
    const QByteArray path = folder.toLocal8Bit();
    if (!QFileInfo(folder).isDir()) {
        report->fail(
            Layer::Folder, "there is no folder " + quoted(folder),
            "Correct the path, or connect the drive that holds it.");
    } else if (access(path.constData(), X_OK) != 0) {
        report->fail(
            Layer::Folder, "you may not enter the folder " + quoted(folder),
            "Ask its owner for access.");
    } else if (access(path.constData(), W_OK) != 0) {
        report->warn(
            Layer::Folder, "you may not write in the folder " + quoted(folder),
            "SQLite makes files beside the database for every change: ask the folder's owner for "
            "the right to write where you want to import.");
    } else {
        report->ok(Layer::Folder, quoted(folder));
    }
}

void diagnose_file_itself(const QFileInfo& file, DiagnosisReport* report)
{
    if (!file.exists()) {
        report->fail(
            Layer::File, "there is no file " + quoted(file.absoluteFilePath()),
            "Put the file back or correct the path. Adding a connection to a file that does not "
            "exist makes an empty database.");
    } else if (!file.isFile()) {
        report->fail(
            Layer::File, quoted(file.absoluteFilePath()) + " is no ordinary file",
            "Name the database file itself.");
    } else if (file.size() == 0) {
        report->fail(
            Layer::File, quoted(file.absoluteFilePath()) + " is empty (0 bytes)",
            "Put the file back from a backup. Adding a connection to an empty file makes an empty "
            "database.");
    } else if (!file.isReadable()) {
        report->fail(
            Layer::File, "you may not read the file (its owner is " + quoted(file.owner()) + ")",
            "Ask its owner for access.");
    } else {
        report->ok(
            Layer::File, std::to_string(file.size()) + " bytes" +
                             (file.isWritable() ? "" : ", which you may only read"));
    }
}

/// Tells whether the file says of itself that it has a write-ahead log. Bytes 18 and 19 are 2 then.
bool has_write_ahead_log(const std::string& path)
{
    std::array<char, 20> header{};
    std::ifstream(path, std::ios::binary).read(header.data(), header.size());
    return header[18] == 2 && header[19] == 2;
}

std::string opening_advice(const QSqlError& error, const std::string& path)
{
    using dbif::SqliteCode;
    switch (dbif::sqlite_code(error)) {
    case SqliteCode::Busy:
    case SqliteCode::Locked:
        return "Another program has the file for itself. Close that program, or try again later.";
    case SqliteCode::Corrupt:
        return "The file is damaged: restore it from a backup.";
    case SqliteCode::NotADatabase:
        return "The file is something else, or it is encrypted. Name an SQLite database or a file "
               "that does not exist yet.";
    case SqliteCode::ReadOnly:
    case SqliteCode::CannotOpen:
        if (has_write_ahead_log(path)) {
            return "The database keeps a write-ahead log, for which also those who read must write "
                   "in its folder. Ask the owner for that right, or to give the log up: sqlite3 "
                   "FILE 'PRAGMA journal_mode = DELETE'.";
        }
        [[fallthrough]];
    default:
        return "Check the access to the file and to its folder.";
    }
}

void diagnose_journal(const DBIF_Connection& connection, DiagnosisReport* report)
{
    QSqlQuery query(QStringLiteral("PRAGMA journal_mode"), connection.inner().database());
    const QString mode = query.next() ? query.value(0).toString() : QStringLiteral("unknown");
    report->ok(
        Layer::JournalMode, mode == QLatin1String("wal")
                                ? "wal: reading goes on while an import runs"
                                : dbif::to_utf8(mode) + ": reading waits while an import runs");
}

QSqlError error_of_creating(DBIF_Connection& connection)
{
    QSqlError error;
    try {
        connection.inner().beginWriteTransaction();
        connection.inner().execute(
            "CREATE TABLE dbapi_connection_check (id INTEGER)", __FILE__, __LINE__);
    } catch (const DBIF_Exception& exception) {
        error = exception.error();
    }
    connection.inner().rollbackTransaction();
    return error;
}

void diagnose_database(const DbuiConnection& record, DiagnosisReport* report)
{
    DBIF_Connection connection(
        record.get_dbDriverName().c_str(), "", record.get_databaseName().c_str(), "", "", 0,
        dbif::MissingFile::Fail);
    if (!connection.isValid()) {
        report->fail(
            Layer::Database, line_of(connection.lastError()),
            opening_advice(connection.lastError(), record.get_databaseName()));
        return;
    }
    report->ok(Layer::Database, "SQLite " + connection.inner().session().version());
    diagnose_journal(connection, report);
    const std::string advice = "Check the access to the file and to its folder. A file on a "
                               "read-only drive can be read all the same.";
    diagnose_content(
        connection, {advice, advice}, [&connection] { return error_of_creating(connection); },
        report);
}
} // namespace

std::vector<DiagnosisStep>
diagnose_file(const DbuiConnection& record, const DiagnosisListener& listener)
{
    DiagnosisReport report(kPlan, listener);
    const QFileInfo file(dbif::to_qt(record.get_databaseName()));
    diagnose_record(record, &report);
    if (report.goesOn()) {
        diagnose_folder(file, &report);
    }
    if (report.goesOn()) {
        diagnose_file_itself(file, &report);
    }
    if (report.goesOn()) {
        diagnose_database(record, &report);
    }
    return report.finish();
}
} // namespace dbui
