#include "dbif/schema/schema.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"
#include "dbif/schema/schema_tables.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

namespace dbif {
namespace {
std::set<std::string> tables_of(QSqlDatabase& database, const SqlDialect& dialect)
{
    QSqlQuery query(database);
    run(query, dialect.listTables());
    std::set<std::string> names;
    while (query.next()) {
        names.insert(to_utf8(query.value(0).toString()));
    }
    return names;
}

/// The lock under which the schema is created on a server, which commits each CREATE TABLE by
/// itself. A session that dies gives it up.
class CreationLock
{
    Q_DISABLE_COPY_MOVE(CreationLock)

public:
    CreationLock(QSqlDatabase& database, const SqlDialect& dialect) : database_(database)
    {
        isHeld_ = dialect.isServer() && call("GET_LOCK(", ", 10)");
    }

    ~CreationLock()
    {
        if (isHeld_) {
            call("RELEASE_LOCK(", ")");
        }
    }

    /// False where no lock can be had, as in some clusters.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

private:
    bool call(const char* function, const char* end)
    {
        QSqlQuery query(database_);
        const QLatin1String name("CONCAT('dbapi.schema.', MD5(DATABASE()))");
        return query.exec(
                   QLatin1String("SELECT ") + QLatin1String(function) + name +
                   QLatin1String(end)) &&
               query.next() && query.value(0).toInt() == 1;
    }

    QSqlDatabase& database_;
    bool isHeld_ = false;
};

/// The tables and views of the schema. The information table comes first, because creation begins
/// with it.
struct SchemaParts
{
    std::vector<std::string> tables = {"database_info", "multi_table", "multi_table_column"};
    std::vector<std::string> views;
};

SchemaParts schema_parts()
{
    SchemaParts parts;
    for (const RecordTable table : kRecordTables) {
        const TableInfo& f = table_info(table);
        for (const std::string& name : {std::string(f.name), f.columnTable(), f.dataTable()}) {
            parts.tables.push_back(name);
        }
        (f.keys == KeyKind::Direction ? parts.tables : parts.views).push_back(f.associationTable());
        if (f.hasLatest()) {
            parts.views.push_back(f.latestView());
        }
    }
    return parts;
}

/// Tells whether these are tables of a creation that was interrupted, and nothing else: all names
/// are of the schema, and none but the directory holds a row.
bool is_beginning_of_schema(QSqlDatabase& database, const std::set<std::string>& tables)
{
    const SchemaParts parts = schema_parts();
    std::set<std::string> foreign = tables;
    for (const std::string& view : parts.views) {
        foreign.erase(view);
    }
    for (const std::string& table : parts.tables) {
        if (foreign.erase(table) == 0 || table == "multi_table") {
            continue;
        }
        const SqlText columns =
            table == "database_info" ? SqlText("schema_version, writes") : SqlText("1");
        SqlText sql;
        sql << "SELECT " << columns << " FROM " << SqlName(table) << " LIMIT 1";
        QSqlQuery query(database);
        if (!query.exec(sql.toQt()) || query.next()) {
            return false;
        }
    }
    return foreign.empty() && tables.contains("database_info");
}

/// Drops what an interrupted creation left on a server. Where that is not sure, or not allowed,
/// everything stays.
void drop_beginning_of_schema(QSqlDatabase& database, const SqlDialect& dialect)
{
    // Whoever is just creating the schema holds the lock.
    const CreationLock lock(database, dialect);
    if (!lock.isHeld() || schema_state(database, dialect).kind != SchemaState::Kind::Incomplete ||
        !is_beginning_of_schema(database, tables_of(database, dialect))) {
        return;
    }
    const SchemaParts parts = schema_parts();
    const auto drop = [&database](const SqlText& kind, const std::string& name) {
        SqlText sql;
        sql << kind << SqlName(name);
        return QSqlQuery(database).exec(sql.toQt());
    };
    for (const std::string& view : parts.views) {
        if (!drop("DROP VIEW IF EXISTS ", view)) {
            return;
        }
    }
    // The information table is dropped last, so that a later attempt still recognises the rest.
    for (auto table = parts.tables.rbegin(); table != parts.tables.rend(); ++table) {
        if (!drop("DROP TABLE IF EXISTS ", *table)) {
            return;
        }
    }
}

void create_schema(QSqlDatabase& database, const SqlDialect& dialect)
{
    dialect.prepareStorage(database);
    const CreationLock lock(database, dialect);
    run(database, dialect.beginWrite());
    try {
        // Another process may have created the schema meanwhile.
        if (tables_of(database, dialect).empty()) {
            write_schema(database, dialect);
        }
        run(database, SqlText("COMMIT"));
    } catch (const DBIF_Exception&) {
        QSqlQuery(database).exec(QStringLiteral("ROLLBACK"));
        throw;
    }
}

/// Servers commit each CREATE TABLE by itself, and the nodes of a cluster apply them one by one: a
/// schema that looks incomplete may be one that another program is just creating.
SchemaState settled_state(QSqlDatabase& database, const SqlDialect& dialect)
{
    constexpr int kLooks = 20;
    constexpr std::chrono::milliseconds kPause(100);
    SchemaState state = schema_state(database, dialect);
    for (int look = 1; look < kLooks && dialect.isServer(); ++look) {
        if (state.kind != SchemaState::Kind::Incomplete) {
            break;
        }
        std::this_thread::sleep_for(kPause);
        state = schema_state(database, dialect);
    }
    return state;
}

void refuse(const std::string& reason)
{
    throw_error("The database \"" + reason, __FILE__, __LINE__, QSqlError::ConnectionError);
}

/// Tells whether one of the record tables among `tables` has a row.
bool has_records(QSqlDatabase& database, const std::set<std::string>& tables)
{
    return std::any_of(kRecordTables.begin(), kRecordTables.end(), [&](RecordTable table) {
        const std::string name(table_info(table).name);
        if (!tables.contains(name)) {
            return false;
        }
        QSqlQuery query(database);
        SqlText sql;
        run(query, sql << "SELECT 1 FROM " << SqlName(name) << " LIMIT 1");
        return query.next();
    });
}

void check_version(const SchemaState& state, const std::string& name)
{
    if (state.version > kSchemaVersion) {
        refuse(
            name + "\" was written by a newer version of this program: its schema has version " +
            std::to_string(state.version) + ", and this program reads versions up to " +
            std::to_string(kSchemaVersion) + ". Update this program.");
    }
}
} // namespace

SchemaState schema_state(QSqlDatabase& database, const SqlDialect& dialect)
{
    const std::set<std::string> tables = tables_of(database, dialect);
    if (tables.empty()) {
        return {SchemaState::Kind::Empty};
    }
    if (!tables.contains("database_info") || !tables.contains("multi_table")) {
        return {
            dialect.isServer() && is_beginning_of_schema(database, tables)
                ? SchemaState::Kind::Incomplete
                : SchemaState::Kind::Foreign};
    }
    QSqlQuery query(database);
    run(query, SqlText("SELECT schema_version FROM database_info WHERE id = 1"));
    if (!query.next()) {
        return {
            has_records(database, tables) ? SchemaState::Kind::Damaged
                                          : SchemaState::Kind::Incomplete};
    }
    bool isNumber = false;
    const int version = query.value(0).toInt(&isNumber);
    return isNumber && version >= 1 ? SchemaState{SchemaState::Kind::Complete, version}
                                    : SchemaState{SchemaState::Kind::Damaged};
}

void initialize_schema(
    QSqlDatabase& database,
    const SqlDialect& dialect,
    EmptyDatabase emptyDatabase)
{
    SchemaState state = settled_state(database, dialect);
    if (state.kind == SchemaState::Kind::Incomplete && dialect.isServer()) {
        drop_beginning_of_schema(database, dialect);
        state = schema_state(database, dialect);
    }
    if (state.kind == SchemaState::Kind::Empty && emptyDatabase == EmptyDatabase::Refuse) {
        refuse(
            to_utf8(database.databaseName()) +
            "\" has no tables, so that there is nothing to read.");
    }
    if (state.kind == SchemaState::Kind::Empty) {
        create_schema(database, dialect);
        state = settled_state(database, dialect);
    }
    const std::string name = to_utf8(database.databaseName());
    switch (state.kind) {
    case SchemaState::Kind::Empty:
    case SchemaState::Kind::Foreign:
        refuse(
            name +
            "\" holds other tables, but no measurement schema: it belongs to another program. Name an empty "
            "or a new database.");
        break;
    case SchemaState::Kind::Incomplete:
        refuse(
            name +
            "\" holds an incomplete measurement schema: its creation was interrupted. Remove it and create it again.");
        break;
    case SchemaState::Kind::Damaged:
        refuse(
            name + "\" is damaged: its table \"database_info\" does not tell the version of the "
                   "schema. Make a backup of it as it is, then restore it from an earlier one.");
        break;
    case SchemaState::Kind::Complete:
        check_version(state, name);
    }
}
} // namespace dbif
