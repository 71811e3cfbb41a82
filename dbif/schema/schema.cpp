#include "dbif/schema/schema.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

namespace dbif {
namespace {
void run(QSqlQuery& query, const SqlText& sql)
{
    if (!query.exec(sql.toQt())) {
        throw DBIF_Exception(sql.toQt(), query.lastError(), QStringLiteral(__FILE__), __LINE__);
    }
}

void run(QSqlDatabase& database, const SqlText& sql)
{
    QSqlQuery query(database);
    run(query, sql);
}

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

/// Writes the statements of the schema, table by table, from the descriptions of the tables.
class SchemaWriter
{
public:
    SchemaWriter(QSqlDatabase& database, const SqlDialect& dialect)
        : database_(database),
          dialect_(dialect),
          types_(dialect.types()),
          options_(dialect.tableOptions(database, false)),
          clusteredOptions_(dialect.tableOptions(database, true))
    {}

    void write()
    {
        writeInformation();
        writeDirectory();
        for (const RecordTable table : kRecordTables) {
            const TableInfo& f = table_info(table);
            writeRecords(f);
            writeColumns(f);
            if (f.keys == KeyKind::Direction) {
                writeSweeps(f);
            } else {
                writeKeys(f);
            }
        }
        // Written last, so that a database where creation was interrupted is not taken for a
        // complete one.
        SqlText version;
        run(database_,
            version << "INSERT INTO database_info (id, schema_version, writes) VALUES (1, "
                    << kSchemaVersion << ", 0)");
    }

private:
    void writeInformation()
    {
        SqlText sql;
        run(database_, sql << "CREATE TABLE database_info (id " << types_.integer
                           << " PRIMARY KEY, schema_version " << types_.integer
                           << " NOT NULL, writes " << types_.integer << " NOT NULL)" << options_);
    }

    void writeDirectory()
    {
        SqlText tables;
        run(database_, tables << "CREATE TABLE multi_table (id " << types_.id
                              << " PRIMARY KEY, column_table_name " << types_.text << " NOT NULL)"
                              << options_);
        SqlText columns;
        run(database_, columns << "CREATE TABLE multi_table_column (multi_table_id " << types_.id
                               << " NOT NULL, column_id " << types_.id
                               << " NOT NULL, PRIMARY KEY (multi_table_id, column_id))"
                               << clusteredOptions_);
        for (const RecordTable table : kRecordTables) {
            SqlText row;
            run(database_, row << "INSERT INTO multi_table (id, column_table_name) VALUES ("
                               << static_cast<int>(table) + 1 << ", "
                               << SqlLiteral(table_info(table).columnTable()) << ")");
        }
    }

    [[nodiscard]] const SqlText& typeOf(const FixedColumnInfo& column) const
    {
        if (column.kind == FixedKind::Text) {
            return column.name == "modified_time" ? types_.time : types_.text;
        }
        return column.kind == FixedKind::Number ? types_.number : types_.id;
    }

    void writeRecords(const TableInfo& f)
    {
        SqlText sql;
        sql << "CREATE TABLE " << SqlName(f.name) << " (id " << types_.id << " PRIMARY KEY";
        for (const ParentLink& link : f.parents) {
            sql << ", " << SqlName(link.column) << " " << types_.id;
        }
        for (const FixedColumnInfo& column : f.fixedColumns.subspan(1)) {
            sql << ", " << SqlName(column.name) << " " << typeOf(column);
        }
        // A digest of the columns that identify a record; missing equals missing in it.
        sql << ", identity " << types_.digest;
        if (f.hasLatest()) {
            sql << ", superseded_by " << types_.id;
        }
        run(database_, sql << ")" << options_);

        for (const ParentLink& link : f.parents) {
            index(f.name, link.column, SqlText() << SqlName(link.column));
        }
        for (const FixedColumnInfo& column : f.fixedColumns.subspan(1)) {
            if (column.indexed == Indexed::Yes) {
                const SqlName name(column.name);
                const bool isLongText =
                    column.kind == FixedKind::Text && column.name != "modified_time";
                index(
                    f.name, column.name,
                    isLongText ? dialect_.indexedText(name) : SqlText() << name);
            }
        }
        SqlText identity;
        run(database_, identity << (f.identity.empty() ? SqlText("CREATE INDEX ")
                                                       : SqlText("CREATE UNIQUE INDEX "))
                                << SqlName(std::string(f.name) + "_by_identity") << " ON "
                                << SqlName(f.name) << " (identity)");
        if (f.hasLatest()) {
            SqlText view;
            run(database_, view << "CREATE VIEW " << SqlName(f.latestView()) << " AS SELECT * FROM "
                                << SqlName(f.name) << " WHERE superseded_by IS NULL");
        }
    }

    void writeColumns(const TableInfo& f)
    {
        SqlText sql;
        sql << "CREATE TABLE " << SqlName(f.columnTable()) << " (id " << types_.id
            << " PRIMARY KEY, name " << types_.text << " NOT NULL, data_type " << types_.text
            << " NOT NULL, ";
        if (f.keys == KeyKind::Direction) {
            sql << "is_input " << types_.integer << " NOT NULL, ";
        } else {
            sql << "category " << types_.text << " NOT NULL, ";
        }
        // Two writers must not define the same key twice; by a digest, because a key name has any
        // length.
        run(database_, sql << "column_key " << types_.text << " NOT NULL, identity "
                           << types_.digest << ")" << options_);
        SqlText unique;
        run(database_, unique << "CREATE UNIQUE INDEX " << SqlName(f.columnTable() + "_by_identity")
                              << " ON " << SqlName(f.columnTable()) << " (identity)");
    }

    /// One row per record and key. The association is a view of it.
    void writeKeys(const TableInfo& f)
    {
        const SqlName data(f.dataTable());
        const SqlName record(f.linkColumn());
        const SqlName column(f.columnLink());
        SqlText sql;
        run(database_, sql << "CREATE TABLE " << data << " (" << record << " " << types_.id
                           << " NOT NULL, " << column << " " << types_.id << " NOT NULL, number "
                           << types_.number << ", text " << types_.text << ", PRIMARY KEY ("
                           << record << ", " << column << "))" << clusteredOptions_);
        index(f.dataTable(), "number", SqlText() << column << ", number, " << record);
        index(
            f.dataTable(), "text",
            SqlText() << column << ", " << dialect_.indexedText(SqlName("text")) << ", " << record,
            dialect_.whereHasValue(SqlName("text")));
        SqlText view;
        run(database_, view << "CREATE VIEW " << SqlName(f.associationTable()) << " AS SELECT "
                            << record << ", " << column << " FROM " << data);
    }

    /// Writes the tables of the keys that a setup has, with their bounds, and of the packed
    /// columns.
    void writeSweeps(const TableInfo& f)
    {
        SqlText association;
        run(database_, association << "CREATE TABLE " << SqlName(f.associationTable())
                                   << " (setup_id " << types_.id << " NOT NULL, setup_column_id "
                                   << types_.id << " NOT NULL, vanto_header " << types_.text
                                   << ", points " << types_.integer << " NOT NULL, minimum "
                                   << types_.number << ", maximum " << types_.number
                                   << ", PRIMARY KEY (setup_id, setup_column_id))"
                                   << clusteredOptions_);
        index(
            f.associationTable(), "bounds", SqlText("setup_column_id, minimum, maximum, setup_id"));
        SqlText data;
        run(database_, data << "CREATE TABLE " << SqlName(f.dataTable()) << " (setup_column_id "
                            << types_.id << " NOT NULL, setup_id " << types_.id
                            << " NOT NULL, chunk " << types_.integer << " NOT NULL, payload "
                            << types_.blob
                            << " NOT NULL, PRIMARY KEY (setup_column_id, setup_id, chunk))"
                            << clusteredOptions_);
    }

    void index(
        std::string_view table,
        std::string_view subject,
        const SqlText& columns,
        const SqlText& restriction = {})
    {
        SqlText sql;
        run(database_, sql << "CREATE INDEX "
                           << SqlName(std::string(table) + "_by_" + std::string(subject)) << " ON "
                           << SqlName(table) << " (" << columns << ")" << restriction);
    }

    QSqlDatabase& database_;
    const SqlDialect& dialect_;
    SqlTypes types_;
    SqlText options_;
    SqlText clusteredOptions_;
};

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
            SchemaWriter(database, dialect).write();
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

void initialize_schema(QSqlDatabase& database, const SqlDialect& dialect)
{
    SchemaState state = settled_state(database, dialect);
    if (state.kind == SchemaState::Kind::Incomplete && dialect.isServer()) {
        drop_beginning_of_schema(database, dialect);
        state = schema_state(database, dialect);
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
