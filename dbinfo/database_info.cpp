#include "dbinfo/database_info.h"

#include "dbapi/call/connection_access.h"
#include "dbapi/call/public_call.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/schema/schema.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace dbapi {
namespace {
using Group = DatabaseInfo::Group;

/// The whole number that a statement yields; nothing for NULL.
std::optional<long long> whole_number(const DBIF_Connection& connection, const dbif::SqlText& sql)
{
    dbif::BulkCursor cursor(connection, sql);
    return cursor.next() && !cursor.isNull(0)
               ? std::optional(static_cast<long long>(cursor.number(0)))
               : std::nullopt;
}

std::string text_of(const DBIF_Connection& connection, const dbif::SqlText& sql)
{
    dbif::BulkCursor cursor(connection, sql);
    return cursor.next() ? std::string(cursor.text(0)) : std::string();
}

/// Tells whether records of the table, or those that they belong to, can be superseded.
bool can_be_superseded(dbif::RecordTable table)
{
    return table == dbif::RecordTable::Measurement ||
           table == dbif::RecordTable::MeasurementCondition || table == dbif::RecordTable::Setup;
}

DatabaseInfo::Table read_table(DBIF_Connection& connection, const dbif::TableInfo& table)
{
    DatabaseInfo::Table read;
    read.name = table.name;
    dbif::SqlText count("SELECT COUNT(*) FROM ");
    count << dbif::SqlName(table.name);
    read.records = whole_number(connection, count).value_or(0);
    if (table.hasLatest()) {
        dbif::SqlText latest("SELECT COUNT(*) FROM ");
        latest << dbif::SqlName(table.latestView());
        read.superseded = read.records - whole_number(connection, latest).value_or(0);
    }
    if (table.keys != dbif::KeyKind::None) {
        // Without a condition, all records are looked at, which is faster where none is superseded.
        const DBIF_TrueCondition all;
        read.keys = read_key_statistics(
            connection, read.name, can_be_superseded(table.table) ? &all : nullptr, true);
    }
    return read;
}

/// Reads groups from a statement whose rows are a text and a number of records.
std::vector<Group> read_groups(const DBIF_Connection& connection, const dbif::SqlText& sql)
{
    std::vector<Group> groups;
    dbif::BulkCursor cursor(connection, sql);
    while (cursor.next()) {
        Group& group = groups.emplace_back();
        if (const std::string text(cursor.text(0)); !text.empty()) {
            group.text = text;
        }
        group.records = static_cast<long long>(cursor.number(1));
    }
    std::sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) {
        return a.records != b.records ? a.records > b.records : a.text < b.text;
    });
    return groups;
}

std::vector<DatabaseInfo::Temperature> read_temperatures(const DBIF_Connection& connection)
{
    std::vector<DatabaseInfo::Temperature> temperatures;
    dbif::BulkCursor cursor(
        connection, "SELECT temperature, COUNT(*) FROM latest_measurement GROUP BY temperature "
                    "ORDER BY temperature");
    while (cursor.next()) {
        DatabaseInfo::Temperature& temperature = temperatures.emplace_back();
        if (!cursor.isNull(0)) {
            temperature.celsius = cursor.number(0);
        }
        temperature.measurements = static_cast<long long>(cursor.number(1));
    }
    return temperatures;
}

std::optional<DatabaseInfo::Import> read_last_import(const DBIF_Connection& connection)
{
    // The latest entry may be a mark that a copy left, without a measurement.
    const std::optional<long long> entry = whole_number(
        connection, "SELECT catalog_entry_id FROM measurement ORDER BY modified_time DESC, id DESC "
                    "LIMIT 1");
    if (!entry.has_value()) {
        return std::nullopt;
    }
    DatabaseInfo::Import import;
    dbif::SqlText sql;
    sql << "SELECT user, application, application_version, (SELECT COUNT(*) FROM measurement WHERE "
           "catalog_entry_id = "
        << *entry
        << "), (SELECT COUNT(*) FROM measurement JOIN measurement_condition ON "
           "measurement_condition.measurement_id = measurement.id JOIN setup ON "
           "setup.measurement_condition_id = measurement_condition.id WHERE catalog_entry_id = "
        << *entry << "), modified_time FROM catalog_entry WHERE id = " << *entry;
    dbif::BulkCursor cursor(connection, sql);
    if (!cursor.next()) {
        return std::nullopt;
    }
    import.user = cursor.text(0);
    import.application = cursor.text(1);
    import.applicationVersion = cursor.text(2);
    import.measurements = static_cast<long long>(cursor.number(3));
    import.setups = static_cast<long long>(cursor.number(4));
    import.time = cursor.text(5);
    return import;
}

/// The bytes of an SQLite file and of its log, which holds what is not moved into the file yet.
std::optional<long long> bytes_of_file(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t bytes = std::filesystem::file_size(path, error);
    if (error) {
        return std::nullopt;
    }
    const std::uintmax_t log = std::filesystem::file_size(path + "-wal", error);
    return static_cast<long long>(bytes + (error ? 0 : log));
}

void read_engine(DBIF_Connection& connection, DatabaseInfo* info)
{
    const dbif::SqlDialect& dialect = connection.inner().dialect();
    info->engine = dialect.name();
    info->engineVersion = connection.inner().session().version();
    QSqlDatabase database = connection.inner().database();
    info->schemaVersion = dbif::schema_state(database, dialect).version;
    DbuiConnection record;
    if (dbapi_get_connection_info(info->connection, &record)) {
        info->database = record.get_databaseName();
        info->host = dialect.isServer() ? record.get_hostname() : std::string();
    }
    info->bytes = dialect.isServer()
                      ? whole_number(
                            connection, "SELECT SUM(data_length + index_length) FROM "
                                        "information_schema.tables WHERE table_schema = DATABASE()")
                      : bytes_of_file(info->database);
}

void read_records(DBIF_Connection& connection, DatabaseInfo* info)
{
    for (const dbif::RecordTable table : dbif::kRecordTables) {
        info->tables.push_back(read_table(connection, dbif::table_info(table)));
    }
    info->points = whole_number(
                       connection, "SELECT SUM(points) FROM (SELECT MAX(points) AS points FROM "
                                   "setup_association WHERE setup_id IN (SELECT id FROM "
                                   "latest_setup) GROUP BY setup_id) AS setups")
                       .value_or(0);
    info->deviceTypes =
        read_groups(connection, "SELECT device_type, COUNT(*) FROM device GROUP BY device_type");
    info->lots = read_groups(
        connection, "SELECT die.lot, COUNT(*) FROM device LEFT JOIN die ON die.id = device.die_id "
                    "GROUP BY die.lot");
    info->routines = read_groups(
        connection, "SELECT routine.name, COUNT(*) FROM latest_measurement AS measurement LEFT "
                    "JOIN routine ON routine.id = measurement.routine_id GROUP BY routine.name");
    info->setupNames =
        read_groups(connection, "SELECT name, COUNT(*) FROM latest_setup GROUP BY name");
    info->temperatures = read_temperatures(connection);
    info->firstTime = text_of(connection, "SELECT MIN(modified_time) FROM measurement");
    info->lastTime = text_of(connection, "SELECT MAX(modified_time) FROM measurement");
    info->lastImport = read_last_import(connection);
}
} // namespace

DatabaseInfo database_info(const std::string& connectionName)
{
    DatabaseInfo info;
    info.connection = connectionName;
    DBIF_Connection connection = kept_connection(connectionName);
    const dbif::ReadTransaction transaction(connection);
    read_engine(connection, &info);
    read_records(connection, &info);
    return info;
}
} // namespace dbapi
