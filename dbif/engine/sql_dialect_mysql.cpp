#include "dbif/engine/native_session_mysql.h"
#include "dbif/engine/sql_dialect.h"
#include "dbif/host/host_string.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <array>
#include <span>

namespace dbif {
namespace {
constexpr int kConnectSeconds = 10;
/// A server that is alive answers the longest statement sooner than this; one that was stopped
/// never does.
constexpr int kAnswerSeconds = 600;

class MysqlDialect final : public SqlDialect
{
public:
    [[nodiscard]] std::string name() const override { return "MySQL"; }

    [[nodiscard]] bool isServer() const override { return true; }

    void configure(QSqlDatabase& database, const ConnectionParameters& parameters) const override
    {
        database.setHostName(to_qt(parameters.host));
        database.setDatabaseName(to_qt(parameters.database));
        database.setUserName(to_qt(parameters.user));
        database.setPassword(to_qt(parameters.password));
        database.setPort(parameters.port);
        database.setConnectOptions(
            QStringLiteral("MYSQL_OPT_CONNECT_TIMEOUT=%1;MYSQL_OPT_READ_TIMEOUT=%2;"
                           "MYSQL_OPT_WRITE_TIMEOUT=%2")
                .arg(kConnectSeconds)
                .arg(kAnswerSeconds));
    }

    [[nodiscard]] QSqlError startSession(QSqlDatabase& database) const override
    {
        // Quoting as in the standard, so that one SQL text serves both engines.
        constexpr std::array kStatements{
            "SET SESSION sql_mode = 'ANSI_QUOTES,NO_BACKSLASH_ESCAPES,STRICT_ALL_TABLES'",
            "SET NAMES utf8mb4"};
        QSqlQuery query(database);
        for (const char* statement : kStatements) {
            if (!query.exec(QString::fromLatin1(statement))) {
                return query.lastError();
            }
        }
        return {};
    }

    [[nodiscard]] std::unique_ptr<SqlSession> session(const QSqlDatabase& database) const override
    {
        return open_mysql_session(database);
    }

    [[nodiscard]] bool isConnectionLost(const QSqlError& error) const override
    {
        // The codes of: server has gone away, lost during the query, killed, shut down.
        constexpr std::array kCodes{"2006", "2013", "1927", "1053", "4031"};
        return hasCode(error, kCodes);
    }

    [[nodiscard]] bool isTransient(const QSqlError& error) const override
    {
        // The codes of: lock wait, deadlock (also: refused by the other nodes), changed since the
        // read, the node of a cluster is not ready, an id that another node took meanwhile.
        constexpr std::array kCodes{"1205", "1213", "1020", "1047", "1062"};
        return hasCode(error, kCodes);
    }

    [[nodiscard]] SqlText beginRead() const override
    {
        return "START TRANSACTION WITH CONSISTENT SNAPSHOT";
    }

    [[nodiscard]] SqlText beginWrite() const override { return "START TRANSACTION"; }

    [[nodiscard]] std::vector<SqlText> writeSettings(bool /*isWriting*/) const override
    {
        return {};
    }

    [[nodiscard]] SqlTypes types() const override
    {
        return {"INT", "INT", "DOUBLE", "LONGTEXT", "CHAR(23)", "BINARY(16)", "LONGBLOB"};
    }

    [[nodiscard]] SqlText
    tableOptions(const QSqlDatabase& database, bool /*clustered*/) const override
    {
        SqlText text;
        return text << " ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE="
                    << SqlName(binaryCollation(database));
    }

    [[nodiscard]] SqlText indexedText(const SqlName& column) const override
    {
        SqlText text;
        return text << column << "(128)";
    }

    [[nodiscard]] SqlText whereHasValue(const SqlName& /*column*/) const override { return {}; }

    void prepareStorage(QSqlDatabase& /*database*/) const override {}

    [[nodiscard]] SqlText listTables() const override
    {
        return "SELECT table_name FROM information_schema.tables WHERE table_schema = DATABASE()";
    }

    [[nodiscard]] std::vector<SqlText> analyze(const std::vector<SqlName>& tables) const override
    {
        std::vector<SqlText> statements;
        for (const SqlName& table : tables) {
            SqlText text;
            statements.push_back(text << "ANALYZE TABLE " << table);
        }
        return statements;
    }

    [[nodiscard]] bool weighsSubSelects() const override { return true; }

    [[nodiscard]] SqlText orderedJoin() const override { return " STRAIGHT_JOIN "; }

    [[nodiscard]] SqlText rangeTable(const std::vector<NumberRange>& ranges) const override
    {
        SqlText text = "(";
        bool first = true;
        for (const NumberRange& range : ranges) {
            if (first) {
                // The first row gives the columns their type.
                text << "SELECT CAST(" << range.low << " AS DOUBLE) AS low, CAST(" << range.high
                     << " AS DOUBLE) AS high";
            } else {
                text << " UNION ALL SELECT " << range.low << ", " << range.high;
            }
            first = false;
        }
        return text << ")";
    }

    [[nodiscard]] SqlText createIdTable(const SqlName& table) const override
    {
        SqlText text;
        return text << "CREATE TEMPORARY TABLE " << table << " (id INT PRIMARY KEY) ENGINE=InnoDB";
    }

    [[nodiscard]] SqlText dropIdTable(const SqlName& table) const override
    {
        SqlText text;
        return text << "DROP TEMPORARY TABLE IF EXISTS " << table;
    }

    [[nodiscard]] std::vector<PlanStep>
    plan(const QSqlDatabase& database, const std::string& sql) const override
    {
        std::vector<PlanStep> steps;
        QSqlQuery query(database);
        query.exec(QStringLiteral("EXPLAIN ") + to_qt(sql));
        const auto cell = [&query](const char* name) {
            return to_utf8(query.value(QLatin1String(name)).toString());
        };
        while (query.next()) {
            const std::string kind = cell("select_type");
            const std::string key = cell("key");
            const std::string table = cell("table");
            PlanStep step;
            step.depth = kind == "SIMPLE" || kind == "PRIMARY" ? 0 : 1;
            // "<subquery2>" is no table, nor is its key an index.
            if (!table.starts_with('<')) {
                step.table = table;
                step.index = key == "PRIMARY" ? "primary key" : key;
                step.isWholeTable = cell("type") == "ALL" || cell("type") == "index";
            }
            step.text = kind;
            const auto add = [&step](const char* before, const std::string& text) {
                step.text += text.empty() ? "" : before + text;
            };
            add(" ", table);
            add(": ", cell("type"));
            add(" by ", key);
            add(" = ", cell("ref"));
            add(", rows about ", cell("rows"));
            add(", ", cell("Extra"));
            steps.push_back(std::move(step));
        }
        return steps;
    }

private:
    static bool hasCode(const QSqlError& error, std::span<const char* const> codes)
    {
        const QString code = error.nativeErrorCode();
        return std::any_of(codes.begin(), codes.end(), [&code](const char* known) {
            return code == QLatin1String(known);
        });
    }

    /// The server's collation by code point, without padding where it has one, so that texts
    /// compare as on the other engines.
    static std::string binaryCollation(const QSqlDatabase& database)
    {
        constexpr std::array kCollations{"utf8mb4_nopad_bin", "utf8mb4_0900_bin"};
        for (const char* collation : kCollations) {
            QSqlQuery query(database);
            query.exec(QStringLiteral("SHOW COLLATION LIKE '%1'").arg(QLatin1String(collation)));
            if (query.next()) {
                return collation;
            }
        }
        return "utf8mb4_bin";
    }
};
} // namespace

const SqlDialect& mysql_dialect()
{
    static const MysqlDialect dialect;
    return dialect;
}
} // namespace dbif
