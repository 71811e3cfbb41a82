#include "dbif/schema/schema_tables.h"

#include "dbif/host/exception.h"
#include "dbif/schema/schema_names.h"

#include <string>
#include <string_view>

namespace dbif {
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

namespace {
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
} // namespace

void write_schema(QSqlDatabase& database, const SqlDialect& dialect)
{
    SchemaWriter(database, dialect).write();
}
} // namespace dbif
