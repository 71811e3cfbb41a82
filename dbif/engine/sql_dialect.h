#pragma once

#include "dbif/engine/native_statement.h"
#include "dbif/engine/sql_text.h"

#include <QSqlDatabase>
#include <QSqlError>

#include <memory>
#include <string>
#include <vector>

namespace dbif {
/// The parameters by which a database is opened.
struct ConnectionParameters
{
    std::string driver;
    std::string host;
    std::string database;
    std::string user;
    std::string password;
    int port = 0;
    /// SQLite only: whatever writes to the database fails.
    bool isReadOnly = false;
};

/// A token that changes whenever the data that a connection would read may have changed. Two equal
/// tokens prove that nothing changed; a default-made one proves nothing.
struct ChangeToken
{
    bool known = false;
    long long otherWriters = 0;
    long long ownChanges = 0;

    friend bool operator==(const ChangeToken& a, const ChangeToken& b)
    {
        return a.known && b.known && a.otherWriters == b.otherWriters &&
               a.ownChanges == b.ownChanges;
    }
};

/// The state of the file behind an open connection.
enum class FileState {
    /// The file was changed at most by its own engine; a server has no file that could be anything
    /// else.
    Same,
    /// Another file stands there, or none, or somebody wrote into it: the connection has to be
    /// opened anew.
    Replaced,
    /// Somebody wrote into it, and a log of the old file stands beside it, with changes that
    /// whoever opens the file will read on top of it.
    Overwritten
};

/// The most that one transaction may write; 0 where there is no limit.
struct TransactionLimit
{
    unsigned long long bytes = 0;
    unsigned long long rows = 0;
};

/// An open connection as the database's own C client sees it. It ends before the Qt connection that
/// it belongs to.
class SqlSession
{
    Q_DISABLE_COPY_MOVE(SqlSession)

public:
    virtual ~SqlSession() = default;

    virtual std::unique_ptr<NativeStatement> prepare(const SqlText& sql) = 0;
    virtual std::unique_ptr<RowInserter>
    inserter(const SqlName& table, const std::vector<SqlName>& columns) = 0;
    virtual ChangeToken changeToken() = 0;
    virtual FileState fileState() = 0;
    virtual TransactionLimit transactionLimit() = 0;
    /// The version of the database engine, for people.
    virtual std::string version() = 0;

protected:
    SqlSession() = default;
};

/// The names of the column types of a schema.
struct SqlTypes
{
    SqlText id;
    SqlText integer;
    SqlText number;
    SqlText text;
    SqlText time;
    SqlText digest;
    SqlText blob;
};

/// One step of the plan by which an engine runs a statement.
struct PlanStep
{
    /// The number of steps within which it stands.
    int depth = 0;
    /// The step in the words of the engine.
    std::string text;
    /// The table that it reads, by its name in the statement, and the index that it uses; empty
    /// where there is none.
    std::string table;
    std::string index;
    /// Tells whether it passes over all rows of a table or an index.
    bool isWholeTable = false;
};

/// A closed range of numbers.
struct NumberRange
{
    double low;
    double high;
};

/// All that differs between database engines. Everything else is plain SQL.
class SqlDialect
{
    Q_DISABLE_COPY_MOVE(SqlDialect)

public:
    virtual ~SqlDialect() = default;

    /// Name of the engine, for people.
    [[nodiscard]] virtual std::string name() const = 0;
    /// Tells whether the database is reached through a server, so that a connection can be lost and
    /// a CREATE TABLE commits by itself.
    [[nodiscard]] virtual bool isServer() const = 0;

    /// Sets the parameters and options of a Qt connection that is not open yet.
    virtual void
    configure(QSqlDatabase& database, const ConnectionParameters& parameters) const = 0;
    /// Brings a connection just opened into the state that the generated SQL expects, and proves
    /// that it reads; the error when it does not.
    [[nodiscard]] virtual QSqlError startSession(QSqlDatabase& database) const = 0;
    [[nodiscard]] virtual std::unique_ptr<SqlSession>
    session(const QSqlDatabase& database) const = 0;
    /// Tells whether the error says that the server closed the connection.
    [[nodiscard]] virtual bool isConnectionLost(const QSqlError& error) const = 0;
    /// Tells whether the error ended a transaction that may succeed when it is run again: a
    /// deadlock, a lock that was not had in time, a conflict between the nodes of a cluster.
    [[nodiscard]] virtual bool isTransient(const QSqlError& error) const = 0;

    [[nodiscard]] virtual SqlText beginRead() const = 0;
    [[nodiscard]] virtual SqlText beginWrite() const = 0;
    /// The settings of a connection while it writes many records, or otherwise.
    [[nodiscard]] virtual std::vector<SqlText> writeSettings(bool isWriting) const = 0;

    [[nodiscard]] virtual SqlTypes types() const = 0;
    /// The options behind the closing parenthesis of CREATE TABLE; `clustered` stores rows in the
    /// order of the primary key.
    [[nodiscard]] virtual SqlText
    tableOptions(const QSqlDatabase& database, bool clustered) const = 0;
    /// A text column as it is written in an index.
    [[nodiscard]] virtual SqlText indexedText(const SqlName& column) const = 0;
    /// The clause that restricts an index to the rows that have a value in `column`; empty where
    /// the engine has none.
    [[nodiscard]] virtual SqlText whereHasValue(const SqlName& column) const = 0;
    /// Runs the statements that come once, outside a transaction, before the schema is created.
    virtual void prepareStorage(QSqlDatabase& database) const = 0;
    /// The statement that yields the names of all tables and views of the database.
    [[nodiscard]] virtual SqlText listTables() const = 0;
    /// The statements that collect statistics for the planner.
    [[nodiscard]] virtual std::vector<SqlText>
    analyze(const std::vector<SqlName>& tables) const = 0;
    /// Tells whether the planner weighs the sub-selects of a condition against each other, and
    /// chooses which of them drives.
    [[nodiscard]] virtual bool weighsSubSelects() const = 0;
    /// The join operator that makes the planner keep the table on the left first.
    [[nodiscard]] virtual SqlText orderedJoin() const = 0;
    /// A sub-select of number ranges with the columns `low` and `high`.
    [[nodiscard]] virtual SqlText rangeTable(const std::vector<NumberRange>& ranges) const = 0;
    /// The statement that creates a temporary table of the session with one column `id`.
    [[nodiscard]] virtual SqlText createIdTable(const SqlName& name) const = 0;
    /// The statement that drops it without ending a transaction.
    [[nodiscard]] virtual SqlText dropIdTable(const SqlName& name) const = 0;
    /// The plan of a SELECT statement, which is not run; empty when the engine tells none.
    [[nodiscard]] virtual std::vector<PlanStep>
    plan(const QSqlDatabase& database, const std::string& sql) const = 0;

protected:
    SqlDialect() = default;
};

/// The dialect of a Qt driver; null for a driver that is not supported.
const SqlDialect* dialect_for(const std::string& driver);
const SqlDialect& sqlite_dialect();
const SqlDialect& mysql_dialect();
} // namespace dbif
