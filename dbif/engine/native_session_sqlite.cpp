#include "dbif/engine/native_session_sqlite.h"

#include "dbif/engine/sqlite_file_watch.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"

#include <QSqlDriver>
#include <QVariant>

#include <limits>
#include <sqlite3.h>

namespace dbif {
namespace {
[[noreturn]] void throw_sqlite_error(sqlite3* handle, const std::string& sql)
{
    throw DBIF_Exception(
        to_qt(sql),
        QSqlError(
            QString(), QString::fromUtf8(sqlite3_errmsg(handle)), QSqlError::StatementError,
            QString::number(sqlite3_extended_errcode(handle))),
        QStringLiteral(__FILE__), __LINE__);
}

class SqliteStatement final : public NativeStatement
{
    Q_DISABLE_COPY_MOVE(SqliteStatement)

public:
    SqliteStatement(sqlite3* handle, const SqlText& sql) : handle_(handle), sql_(sql.utf8())
    {
        const int status = sqlite3_prepare_v2(
            handle, sql_.c_str(), static_cast<int>(sql_.size()) + 1, &statement_, nullptr);
        if (status != SQLITE_OK) {
            throw_sqlite_error(handle_, sql_);
        }
    }

    ~SqliteStatement() override { sqlite3_finalize(statement_); }

    void bindInteger(int parameter, long long value) override
    {
        sqlite3_bind_int64(statement_, parameter + 1, value);
    }

    void bindNull(int parameter) { sqlite3_bind_null(statement_, parameter + 1); }

    void bindNumber(int parameter, double value)
    {
        sqlite3_bind_double(statement_, parameter + 1, value);
    }

    void bindText(int parameter, std::string_view value)
    {
        // A null pointer would bind NULL.
        const char* bytes = value.data() == nullptr ? "" : value.data();
        sqlite3_bind_text64(
            statement_, parameter + 1, bytes, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }

    void bindBlob(int parameter, std::string_view value)
    {
        const char* bytes = value.data() == nullptr ? "" : value.data();
        sqlite3_bind_blob64(statement_, parameter + 1, bytes, value.size(), SQLITE_TRANSIENT);
    }

    bool step() override
    {
        const int status = sqlite3_step(statement_);
        if (status == SQLITE_ROW) {
            return true;
        }
        if (status != SQLITE_DONE) {
            throw_sqlite_error(handle_, sql_);
        }
        return false;
    }

    void reset() override { sqlite3_reset(statement_); }

    bool isNull(int column) override
    {
        return sqlite3_column_type(statement_, column) == SQLITE_NULL;
    }

    long long integer(int column) override { return sqlite3_column_int64(statement_, column); }

    double number(int column) override
    {
        // SQLite stores a text in a column of numbers as it is, and would read it as 0.
        const int type = sqlite3_column_type(statement_, column);
        if (type == SQLITE_NULL) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        if (type == SQLITE_TEXT || type == SQLITE_BLOB) {
            throw_error(
                "The database is damaged: its column \"" +
                    std::string(sqlite3_column_name(statement_, column)) + "\" holds \"" +
                    std::string(text(column)) +
                    "\" where a number belongs. Restore the database from a backup, or import the "
                    "data again.",
                __FILE__, __LINE__);
        }
        return sqlite3_column_double(statement_, column);
    }

    std::string_view text(int column) override
    {
        const void* bytes = sqlite3_column_blob(statement_, column);
        const int size = sqlite3_column_bytes(statement_, column);
        return bytes == nullptr
                   ? std::string_view()
                   : std::string_view(
                         static_cast<const char*>(bytes), static_cast<std::size_t>(size));
    }

private:
    sqlite3* handle_;
    std::string sql_;
    sqlite3_stmt* statement_ = nullptr;
};

SqlText insert_statement(const SqlName& table, const std::vector<SqlName>& columns)
{
    SqlText sql;
    return sql << "INSERT INTO " << table << " (" << listed(columns) << ") VALUES ("
               << listed(columns, [](const SqlName&) { return SqlText("?"); }) << ")";
}

class SqliteInserter final : public RowInserter
{
public:
    SqliteInserter(sqlite3* handle, const SqlText& sql) : statement_(handle, sql) {}

    RowInserter& null() override
    {
        statement_.bindNull(next_++);
        return *this;
    }

    RowInserter& integer(long long value) override
    {
        statement_.bindInteger(next_++, value);
        return *this;
    }

    RowInserter& number(double value) override
    {
        statement_.bindNumber(next_++, value);
        return *this;
    }

    RowInserter& text(std::string_view value) override
    {
        statement_.bindText(next_++, value);
        return *this;
    }

    RowInserter& blob(std::string_view value) override
    {
        statement_.bindBlob(next_++, value);
        return *this;
    }

    void endRow() override
    {
        next_ = 0;
        statement_.step();
        statement_.reset();
    }

    void flush() override {}

private:
    SqliteStatement statement_;
    int next_ = 0;
};

class SqliteSession final : public SqlSession
{
public:
    SqliteSession(sqlite3* handle, const std::string& path)
        : handle_(handle), watch_(handle, path, *this)
    {}

    std::unique_ptr<NativeStatement> prepare(const SqlText& sql) override
    {
        return std::make_unique<SqliteStatement>(handle_, sql);
    }

    std::unique_ptr<RowInserter>
    inserter(const SqlName& table, const std::vector<SqlName>& columns) override
    {
        return std::make_unique<SqliteInserter>(handle_, insert_statement(table, columns));
    }

    ChangeToken changeToken() override
    {
        if (dataVersion_ == nullptr) {
            dataVersion_ =
                std::make_unique<SqliteStatement>(handle_, SqlText("PRAGMA data_version"));
        }
        ChangeToken token;
        token.known = dataVersion_->step();
        token.otherWriters = dataVersion_->integer(0);
        token.ownChanges = sqlite3_total_changes64(handle_);
        dataVersion_->reset();
        return token;
    }

    FileState fileState() override { return watch_.state(); }

    TransactionLimit transactionLimit() override { return {}; }

    std::string version() override { return sqlite3_libversion(); }

private:
    sqlite3* handle_;
    std::unique_ptr<SqliteStatement> dataVersion_;
    SqliteFileWatch watch_; // asks for the token when it begins
};
} // namespace

std::unique_ptr<SqlSession> open_sqlite_session(const QSqlDatabase& database)
{
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0) {
        throw_error("The Qt driver QSQLITE gives no sqlite3 handle.", __FILE__, __LINE__);
    }
    return std::make_unique<SqliteSession>(
        *static_cast<sqlite3* const*>(handle.constData()), to_utf8(database.databaseName()));
}
} // namespace dbif
