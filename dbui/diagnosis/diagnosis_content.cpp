#include "dbui/diagnosis/diagnosis_content.h"

#include "dbif/connection/managed_connection.h"
#include "dbif/engine/sqlite_code.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema.h"
#include "dbif/schema/schema_names.h"

namespace dbui {
namespace {
using Layer = DiagnosisStep::Layer;

constexpr const char* kBusy =
    "Another program is writing to it right now. Try again when it has finished.";

/// SQLite's "busy" and "locked", and a server's wait for a lock that took too long.
bool is_busy(const QSqlError& error)
{
    constexpr int kLockWaitTimeout = 1205;
    constexpr int kFirstServerCode = 1000;
    const int code = error.nativeErrorCode().toInt();
    const dbif::SqliteCode sqlite = dbif::sqlite_code(error);
    return code == kLockWaitTimeout ||
           (code < kFirstServerCode &&
            (sqlite == dbif::SqliteCode::Busy || sqlite == dbif::SqliteCode::Locked));
}

constexpr int kOurVersion = dbif::kSchemaVersion;

void diagnose_version(int version, DiagnosisReport* report)
{
    const std::string text = "measurement tables of version " + std::to_string(version);
    if (version > kOurVersion) {
        report->fail(
            Layer::Schema,
            text + "; this program reads versions up to " + std::to_string(kOurVersion),
            "Update this program.");
    } else {
        report->ok(Layer::Schema, text);
    }
}

/// Tells whether the database is empty.
bool diagnose_schema(DBIF_Connection& connection, DiagnosisReport* report)
{
    using Kind = dbif::SchemaState::Kind;
    QSqlDatabase database = connection.inner().database();
    const dbif::SchemaState state = dbif::schema_state(database, connection.inner().dialect());
    switch (state.kind) {
    case Kind::Empty:
        report->ok(
            Layer::Schema, "the database is empty; its measurement tables (version " +
                               std::to_string(kOurVersion) + ") are made when it is first used");
        break;
    case Kind::Foreign:
        report->fail(
            Layer::Schema, "there are tables, but not those of measurements",
            "The database belongs to another program. Name an empty or a new database.");
        break;
    case Kind::Incomplete:
        report->fail(
            Layer::Schema, "the measurement tables are incomplete: their creation was interrupted",
            "Remove the database and create it again; it holds no data yet.");
        break;
    case Kind::Damaged:
        report->fail(
            Layer::Schema,
            "the database is damaged: its table \"database_info\" does not tell the version of the "
            "schema",
            "Make a backup of it as it is, then restore it from an earlier one.");
        break;
    case Kind::Complete:
        diagnose_version(state.version, report);
    }
    return state.kind == Kind::Empty;
}

/// All tables and views that a query may read.
std::vector<std::string> tables_to_read()
{
    std::vector<std::string> names = {"database_info", "multi_table", "multi_table_column"};
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        const dbif::TableInfo& f = dbif::table_info(table);
        names.insert(
            names.end(),
            {std::string(f.name), f.columnTable(), f.dataTable(), f.associationTable()});
        if (f.hasLatest()) {
            names.push_back(f.latestView());
        }
    }
    return names;
}

/// The first fault that SQLite finds in the structure of a file, which single tables may hide by
/// giving fewer rows; empty when there is none, and for a server.
std::string fault_of_structure(DBIF_Connection& connection)
{
    if (connection.inner().dialect().isServer()) {
        return {};
    }
    QSqlQuery check =
        connection.query(QStringLiteral("PRAGMA quick_check(1)"), 0, __FILE__, __LINE__);
    const std::string found =
        check.next() ? dbif::to_utf8(check.value(0).toString()) : std::string();
    return found == "ok" ? std::string() : dbif::to_utf8(dbif::to_qt(found).simplified());
}

void diagnose_reading(
    DBIF_Connection& connection,
    const std::string& advice,
    DiagnosisReport* report)
{
    const std::string fault = fault_of_structure(connection);
    if (!fault.empty()) {
        report->fail(
            Layer::Reading, "the file is damaged: " + fault,
            "Make a backup of it as it is, then restore it from an earlier one.");
        return;
    }
    for (const std::string& name : tables_to_read()) {
        dbif::SqlText sql;
        connection.inner().execute(
            sql << "SELECT 1 FROM " << dbif::SqlName(name) << " LIMIT 1", __FILE__, __LINE__);
    }
    const dbif::SqlName ids("dbapi_connection_check");
    try {
        connection.inner().execute(
            connection.inner().dialect().createIdTable(ids), __FILE__, __LINE__);
        connection.inner().execute(
            connection.inner().dialect().dropIdTable(ids), __FILE__, __LINE__);
    } catch (const DBIF_Exception& exception) {
        report->warn(
            Layer::Reading,
            "all tables can be read, but no temporary table can be made, which conditions that "
            "select many records need: " +
                line_of(exception.error()),
            advice);
        return;
    }
    report->ok(Layer::Reading, "all tables can be read");
}

/// Writes to every table, as far as the right to write is checked by that, and rolls back.
void try_writing(DBIF_Connection& connection)
{
    connection.inner().beginWriteTransaction();
    try {
        connection.inner().execute(
            "UPDATE database_info SET writes = writes + 1 WHERE id = 1", __FILE__, __LINE__);
        for (const dbif::RecordTable table : dbif::kRecordTables) {
            const dbif::SqlName name(dbif::table_info(table).name);
            // The statement inserts no rows, but needs the right to insert them.
            dbif::SqlText sql;
            connection.inner().execute(
                sql << "INSERT INTO " << name << " SELECT * FROM " << name << " WHERE 1 = 0",
                __FILE__, __LINE__);
        }
    } catch (const DBIF_Exception&) {
        connection.inner().rollbackTransaction();
        throw;
    }
    connection.inner().rollbackTransaction();
}

/// Runs the check of a layer that ends the diagnosis when the database refuses it.
template <typename Check>
void check_layer(Layer layer, const std::string& advice, DiagnosisReport* report, Check check)
{
    try {
        check();
    } catch (const DBIF_Exception& exception) {
        report->fail(
            layer, line_of(exception.error()), is_busy(exception.error()) ? kBusy : advice);
    }
}

void report_writing(const QSqlError& error, const std::string& advice, DiagnosisReport* report)
{
    if (!error.isValid()) {
        report->ok(Layer::Writing, "data can be written (tried, and taken back)");
    } else if (is_busy(error)) {
        report->warn(Layer::Writing, "not possible at the moment: " + line_of(error), kBusy);
    } else {
        report->warn(Layer::Writing, "the data can only be read: " + line_of(error), advice);
    }
}

QSqlError error_of_writing(DBIF_Connection& connection)
{
    try {
        try_writing(connection);
        return {};
    } catch (const DBIF_Exception& exception) {
        return exception.error();
    }
}
} // namespace

std::string line_of(const QSqlError& error)
{
    return dbif::trimmed(
        dbif::to_utf8(dbif::to_qt(convert_sql_error_to_string(error).str()).simplified()));
}

void diagnose_content(
    DBIF_Connection& connection,
    const RightsAdvice& advice,
    const CreationCheck& mayCreate,
    DiagnosisReport* report)
{
    bool isEmpty = false;
    check_layer(Layer::Schema, advice.toRead, report, [&] {
        isEmpty = diagnose_schema(connection, report);
    });
    if (!report->goesOn()) {
        return;
    }
    if (isEmpty) {
        report->skip(Layer::Reading, "there is nothing to read yet");
    } else {
        check_layer(Layer::Reading, advice.toRead, report, [&] {
            diagnose_reading(connection, advice.toRead, report);
        });
    }
    if (report->goesOn()) {
        report_writing(
            isEmpty ? mayCreate() : error_of_writing(connection), advice.toWrite, report);
    }
}
} // namespace dbui
