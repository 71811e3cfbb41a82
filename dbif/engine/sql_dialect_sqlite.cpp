#include "dbif/engine/native_session_sqlite.h"
#include "dbif/engine/sql_dialect.h"
#include "dbif/engine/sqlite_code.h"
#include "dbif/host/host_string.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QStorageInfo>
#include <QVariant>

#include <array>
#include <map>
#include <sys/vfs.h>

namespace dbif {
namespace {
constexpr int kBusyMilliseconds = 5000;

/// File systems that several machines share. WAL needs memory that all its users share, so it is
/// not safe there.
bool is_on_network(const QString& path)
{
    const QByteArray type = QStorageInfo(QFileInfo(path).absolutePath()).fileSystemType();
    constexpr std::array kNetworkTypes{"nfs",  "cifs",   "smb",  "9p",        "afs",
                                       "ceph", "lustre", "gpfs", "fuse.sshfs"};
    for (const char* network : kNetworkTypes) {
        if (type.startsWith(network)) {
            return true;
        }
    }
    return false;
}

QSqlError run(QSqlDatabase& database, const QString& sql)
{
    QSqlQuery query(database);
    return query.exec(sql) ? QSqlError() : query.lastError();
}

class SqliteDialect final : public SqlDialect
{
public:
    [[nodiscard]] std::string name() const override { return "SQLite"; }

    [[nodiscard]] bool isServer() const override { return false; }

    void configure(QSqlDatabase& database, const ConnectionParameters& parameters) const override
    {
        database.setDatabaseName(to_qt(parameters.database));
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyMilliseconds);
        if (parameters.isReadOnly) {
            options += QStringLiteral(";QSQLITE_OPEN_READONLY");
        }
        database.setConnectOptions(options);
    }

    [[nodiscard]] QSqlError startSession(QSqlDatabase& database) const override
    {
        // Opening reads nothing; the first look at the schema shows whether this is a database.
        QSqlError error = run(database, QStringLiteral("SELECT count(*) FROM sqlite_master"));
        if (error.type() != QSqlError::NoError) {
            return error;
        }
        // Sets of ids are kept in memory and not in a file. (A larger cache than the default is
        // slower.)
        run(database, QStringLiteral("PRAGMA temp_store = MEMORY"));
        return error;
    }

    [[nodiscard]] std::unique_ptr<SqlSession> session(const QSqlDatabase& database) const override
    {
        return open_sqlite_session(database);
    }

    [[nodiscard]] bool isConnectionLost(const QSqlError& /*error*/) const override { return false; }

    [[nodiscard]] bool isTransient(const QSqlError& error) const override
    {
        return sqlite_code(error) == SqliteCode::Busy;
    }

    [[nodiscard]] SqlText beginRead() const override { return "BEGIN"; }

    [[nodiscard]] SqlText beginWrite() const override { return "BEGIN IMMEDIATE"; }

    [[nodiscard]] std::vector<SqlText> writeSettings(bool isWriting) const override
    {
        // Digests come in no order. A page of their index that is written to the log too early is
        // soon read back and changed, and the change invalidates the checksums of all pages behind
        // it. 32 MiB hold the indexes of some 100,000 new records. (SQLite's default is 2 MB.)
        return {
            isWriting ? SqlText("PRAGMA cache_size = -32768")
                      : SqlText("PRAGMA cache_size = -2000")};
    }

    [[nodiscard]] SqlTypes types() const override
    {
        return {SqlText("INTEGER"), SqlText("INTEGER"), SqlText("REAL"), SqlText("TEXT"),
                SqlText("TEXT"),    SqlText("BLOB"),    SqlText("BLOB")};
    }

    [[nodiscard]] SqlText
    tableOptions(const QSqlDatabase& /*database*/, bool clustered) const override
    {
        return clustered ? SqlText(" WITHOUT ROWID") : SqlText();
    }

    [[nodiscard]] SqlText indexedText(const SqlName& column) const override
    {
        SqlText text;
        text << column;
        return text;
    }

    [[nodiscard]] SqlText whereHasValue(const SqlName& column) const override
    {
        SqlText text;
        text << " WHERE " << column << " IS NOT NULL";
        return text;
    }

    void prepareStorage(QSqlDatabase& database) const override
    {
        // A page holds four rows of `setup_data` of 2 kB; larger pages make look-ups slower.
        run(database, QStringLiteral("PRAGMA page_size = 8192"));
        if (!is_on_network(database.databaseName())) {
            run(database, QStringLiteral("PRAGMA journal_mode = WAL"));
        }
    }

    [[nodiscard]] SqlText listTables() const override
    {
        return "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' "
               "ESCAPE '!'";
    }

    [[nodiscard]] std::vector<SqlText>
    analyze(const std::vector<SqlName>& /*tables*/) const override
    {
        return {SqlText("ANALYZE")};
    }

    [[nodiscard]] bool weighsSubSelects() const override { return false; }

    [[nodiscard]] SqlText orderedJoin() const override { return " CROSS JOIN "; }

    [[nodiscard]] SqlText rangeTable(const std::vector<NumberRange>& ranges) const override
    {
        SqlText text = "(SELECT column1 AS low, column2 AS high FROM (VALUES ";
        bool first = true;
        for (const NumberRange& range : ranges) {
            text << (first ? SqlText("(") : SqlText(", (")) << range.low << ", " << range.high
                 << ")";
            first = false;
        }
        return text << "))";
    }

    [[nodiscard]] SqlText createIdTable(const SqlName& table) const override
    {
        SqlText text;
        return text << "CREATE TEMPORARY TABLE " << table << " (id INTEGER PRIMARY KEY)";
    }

    [[nodiscard]] SqlText dropIdTable(const SqlName& table) const override
    {
        SqlText text;
        return text << "DROP TABLE IF EXISTS temp." << table;
    }

    [[nodiscard]] std::vector<PlanStep>
    plan(const QSqlDatabase& database, const std::string& sql) const override
    {
        std::vector<PlanStep> steps;
        std::map<int, int> depths{{0, -1}};
        QSqlQuery query(database);
        query.exec(QStringLiteral("EXPLAIN QUERY PLAN ") + to_qt(sql));
        while (query.next()) {
            PlanStep step;
            step.depth = depths[query.value(1).toInt()] + 1;
            depths[query.value(0).toInt()] = step.depth;
            step.text = to_utf8(query.value(3).toString());
            readWords(&step);
            steps.push_back(std::move(step));
        }
        return steps;
    }

private:
    /// Finds table and index in "SEARCH t USING COVERING INDEX i (...)", "SEARCH t USING INTEGER
    /// PRIMARY KEY (...)" and "SCAN t".
    static void readWords(PlanStep* step)
    {
        const std::string& text = step->text;
        const bool isSearch = text.starts_with("SEARCH ");
        if (!isSearch && !text.starts_with("SCAN ")) {
            return;
        }
        const auto word = [&text](std::size_t begin) {
            return text.substr(begin, text.find(' ', begin) - begin);
        };
        step->table = word(isSearch ? 7 : 5);
        const bool isTable = step->table.front() >= 'a' && step->table.front() <= 'z';
        step->isWholeTable = !isSearch && isTable;
        constexpr std::string_view kIndex = " INDEX ";
        const std::size_t index = text.find(kIndex);
        if (index != std::string::npos) {
            step->index = word(index + kIndex.size());
        } else if (text.find(" PRIMARY KEY") != std::string::npos) {
            step->index = "primary key";
        }
    }
};
} // namespace

const SqlDialect& sqlite_dialect()
{
    static const SqliteDialect dialect;
    return dialect;
}
} // namespace dbif
