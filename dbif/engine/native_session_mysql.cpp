#include "dbif/engine/native_session_mysql.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <QSqlDriver>
#include <QVariant>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <mysql.h>
#include <optional>

namespace dbif {
namespace {
[[noreturn]] void
throw_mysql_error(const char* message, unsigned int number, const std::string& sql)
{
    throw DBIF_Exception(
        to_qt(std::string_view(sql).substr(0, 2000)),
        QSqlError(
            QString(), QString::fromUtf8(message), QSqlError::StatementError,
            QString::number(number)),
        QStringLiteral(__FILE__), __LINE__);
}

/// The buffer into which the client puts one column of a row.
struct Cell
{
    enum class Kind { Integer, Number, Bytes };
    Kind kind = Kind::Bytes;
    long long integer = 0;
    double number = 0;
    /// The value, when it fits into the buffer that is bound for the whole result, and a longer
    /// one.
    std::string shortBytes;
    std::string longBytes;
    unsigned long length = 0;
    my_bool isNull = 0;
    my_bool isTruncated = 0;
};

Cell::Kind kind_of(const MYSQL_FIELD& field)
{
    switch (field.type) {
    case MYSQL_TYPE_TINY:
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_LONG:
    case MYSQL_TYPE_LONGLONG:
        return Cell::Kind::Integer;
    case MYSQL_TYPE_FLOAT:
    case MYSQL_TYPE_DOUBLE:
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
        return Cell::Kind::Number;
    default:
        return Cell::Kind::Bytes;
    }
}

struct StatementCloser
{
    void operator()(MYSQL_STMT* statement) const { mysql_stmt_close(statement); }
};

class MysqlStatement final : public NativeStatement
{
    Q_DISABLE_COPY_MOVE(MysqlStatement)

public:
    MysqlStatement(MYSQL* handle, const SqlText& sql)
        : sql_(sql.utf8()), handle_(handle), statement_(mysql_stmt_init(handle))
    {
        if (statement_ == nullptr ||
            mysql_stmt_prepare(statement_.get(), sql_.data(), sql_.size()) != 0) {
            fail();
        }
        parameters_.resize(mysql_stmt_param_count(statement_.get()));
        values_.resize(parameters_.size());
        bindResult();
    }

    ~MysqlStatement() override = default;

    void bindInteger(int parameter, long long value) override
    {
        const auto at = static_cast<std::size_t>(parameter);
        values_.at(at) = value;
        parameters_.at(at) = {};
        parameters_.at(at).buffer_type = MYSQL_TYPE_LONGLONG;
        parameters_.at(at).buffer = &values_.at(at);
    }

    bool step() override
    {
        if (!isRunning_) {
            run();
        }
        const int status = mysql_stmt_fetch(statement_.get());
        if (status == 0 || status == MYSQL_DATA_TRUNCATED) {
            fetchLongCells();
            return true;
        }
        if (status != MYSQL_NO_DATA) {
            fail();
        }
        reset();
        return false;
    }

    void reset() override
    {
        if (isRunning_) {
            mysql_stmt_free_result(statement_.get());
            isRunning_ = false;
        }
    }

    bool isNull(int column) override { return cell(column).isNull != 0; }

    long long integer(int column) override
    {
        const Cell& c = cell(column);
        if (c.isNull != 0) {
            return 0;
        }
        return c.kind == Cell::Kind::Integer ? c.integer : static_cast<long long>(number(column));
    }

    double number(int column) override
    {
        const Cell& c = cell(column);
        if (c.isNull != 0) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        if (c.kind == Cell::Kind::Bytes) {
            return read_engineering_number(text(column));
        }
        return c.kind == Cell::Kind::Number ? c.number : static_cast<double>(c.integer);
    }

    std::string_view text(int column) override
    {
        const Cell& c = cell(column);
        if (c.isNull != 0) {
            return {};
        }
        return {c.length <= kFirstBuffer ? c.shortBytes.data() : c.longBytes.data(), c.length};
    }

private:
    static constexpr std::size_t kFirstBuffer = 256;

    Cell& cell(int column) { return cells_.at(static_cast<std::size_t>(column)); }

    [[noreturn]] void fail()
    {
        if (statement_ == nullptr) {
            throw_mysql_error("Out of memory", 0, sql_);
        }
        // An error that the server reports in the middle of a result is noted at the connection
        // only.
        const bool isOwn = mysql_stmt_errno(statement_.get()) != 0;
        const std::string message =
            isOwn ? mysql_stmt_error(statement_.get()) : mysql_error(handle_);
        throw_mysql_error(
            message.c_str(), isOwn ? mysql_stmt_errno(statement_.get()) : mysql_errno(handle_),
            sql_);
    }

    void bindResult()
    {
        MYSQL_RES* metadata = mysql_stmt_result_metadata(statement_.get());
        if (metadata == nullptr) {
            return;
        }
        const unsigned int count = mysql_num_fields(metadata);
        const MYSQL_FIELD* fields = mysql_fetch_fields(metadata);
        cells_.resize(count);
        results_.resize(count);
        for (unsigned int i = 0; i < count; ++i) {
            cells_[i].kind = kind_of(fields[i]);
            if (cells_[i].kind == Cell::Kind::Bytes) {
                cells_[i].shortBytes.resize(kFirstBuffer);
            }
            bindCell(i);
        }
        mysql_free_result(metadata);
    }

    void bindCell(std::size_t i)
    {
        Cell& c = cells_[i];
        MYSQL_BIND& bind = results_[i];
        bind = {};
        bind.is_null = &c.isNull;
        bind.length = &c.length;
        bind.error = &c.isTruncated;
        if (c.kind == Cell::Kind::Integer) {
            bind.buffer_type = MYSQL_TYPE_LONGLONG;
            bind.buffer = &c.integer;
        } else if (c.kind == Cell::Kind::Number) {
            bind.buffer_type = MYSQL_TYPE_DOUBLE;
            bind.buffer = &c.number;
        } else {
            bind.buffer_type = MYSQL_TYPE_BLOB;
            bind.buffer = c.shortBytes.data();
            bind.buffer_length = c.shortBytes.size();
        }
    }

    void run()
    {
        if (!parameters_.empty() &&
            mysql_stmt_bind_param(statement_.get(), parameters_.data()) != 0) {
            fail();
        }
        if (mysql_stmt_execute(statement_.get()) != 0) {
            fail();
        }
        if (!results_.empty() && mysql_stmt_bind_result(statement_.get(), results_.data()) != 0) {
            fail();
        }
        isRunning_ = true;
    }

    /// A text or blob that was longer than its buffer is fetched again, into a longer one. The
    /// bound buffers stay as they are: the client of MariaDB 10.11.18 loses the lengths of cells
    /// when they are bound anew in the middle of a result.
    void fetchLongCells()
    {
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            Cell& c = cells_[i];
            if (c.kind != Cell::Kind::Bytes || c.isNull != 0 || c.length <= kFirstBuffer) {
                continue;
            }
            if (c.longBytes.size() < c.length) {
                c.longBytes.resize(std::max<std::size_t>(c.length, 2 * c.longBytes.size()));
            }
            MYSQL_BIND bind = results_[i];
            unsigned long length = 0;
            bind.length = &length;
            bind.buffer = c.longBytes.data();
            bind.buffer_length = c.longBytes.size();
            if (mysql_stmt_fetch_column(statement_.get(), &bind, static_cast<unsigned int>(i), 0) !=
                0) {
                fail();
            }
        }
    }

    std::string sql_;
    MYSQL* handle_;
    // Closed also when the constructor fails.
    std::unique_ptr<MYSQL_STMT, StatementCloser> statement_;
    std::vector<MYSQL_BIND> parameters_;
    std::vector<long long> values_;
    std::vector<MYSQL_BIND> results_;
    std::vector<Cell> cells_;
    bool isRunning_ = false;
};

/// Collects rows into one INSERT statement and sends it before it outgrows what the server takes.
class MysqlInserter final : public RowInserter
{
public:
    MysqlInserter(
        MYSQL* handle,
        const SqlName& table,
        const std::vector<SqlName>& columns,
        std::size_t limit)
        : handle_(handle), limit_(limit)
    {
        SqlText head;
        head << "INSERT INTO " << table << " (" << listed(columns) << ") VALUES ";
        head_ = head.utf8();
    }

    RowInserter& null() override { return add("NULL"); }

    RowInserter& integer(long long value) override { return add(std::to_string(value)); }

    RowInserter& number(double value) override
    {
        // The server takes a literal with an exponent for a DOUBLE, and one without for a DECIMAL.
        const std::string text = double_text(value);
        return add(text.find('e') == std::string::npos ? text + "e0" : text);
    }

    RowInserter& text(std::string_view value) override
    {
        SqlText literal;
        literal << SqlLiteral(value);
        return add(literal.utf8());
    }

    RowInserter& blob(std::string_view value) override
    {
        SqlText literal;
        literal << SqlBlob(value);
        return add(literal.utf8());
    }

    void endRow() override
    {
        row_ += ')';
        if (head_.size() + row_.size() + 1 > limit_) {
            throw_error(
                "A record of " + std::to_string(row_.size()) +
                    " bytes is larger than the server takes (" + std::to_string(limit_) +
                    " bytes): raise the server's max_allowed_packet.",
                __FILE__, __LINE__, QSqlError::TransactionError);
        }
        if (batch_.size() + row_.size() + 1 > limit_) {
            flush();
        }
        batch_ += batch_.empty() ? head_ : ",";
        batch_ += row_;
        row_.clear();
        if (batch_.size() > kWantedBatch) {
            flush();
        }
    }

    void flush() override
    {
        if (batch_.empty()) {
            return;
        }
        if (mysql_real_query(handle_, batch_.data(), batch_.size()) != 0) {
            throw_mysql_error(mysql_error(handle_), mysql_errno(handle_), batch_);
        }
        batch_.clear();
    }

private:
    static constexpr std::size_t kWantedBatch = 1U << 20U;

    RowInserter& add(std::string_view value)
    {
        row_ += row_.empty() ? "(" : ",";
        row_ += value;
        return *this;
    }

    MYSQL* handle_;
    std::size_t limit_;
    std::string head_;
    std::string batch_;
    std::string row_;
};

class MysqlSession final : public SqlSession
{
public:
    explicit MysqlSession(MYSQL* handle) : handle_(handle) {}

    std::unique_ptr<NativeStatement> prepare(const SqlText& sql) override
    {
        return std::make_unique<MysqlStatement>(handle_, sql);
    }

    std::unique_ptr<RowInserter>
    inserter(const SqlName& table, const std::vector<SqlName>& columns) override
    {
        return std::make_unique<MysqlInserter>(handle_, table, columns, packetLimit());
    }

    ChangeToken changeToken() override { return {}; }

    FileState fileState() override { return FileState::Same; }

    /// Only the nodes of a cluster bound what they replicate at once.
    TransactionLimit transactionLimit() override
    {
        if (!transactionLimit_.has_value()) {
            transactionLimit_ = readTransactionLimit();
        }
        return *transactionLimit_;
    }

    std::string version() override { return mysql_get_server_info(handle_); }

private:
    TransactionLimit readTransactionLimit()
    {
        std::map<std::string, std::string> variables;
        MysqlStatement statement(
            handle_, SqlText("SHOW VARIABLES WHERE Variable_name IN ('wsrep_on', "
                             "'wsrep_max_ws_size', 'wsrep_max_ws_rows')"));
        while (statement.step()) {
            variables[std::string(statement.text(0))] = std::string(statement.text(1));
        }
        TransactionLimit limit;
        if (variables["wsrep_on"] == "ON") {
            limit.bytes = std::strtoull(variables["wsrep_max_ws_size"].c_str(), nullptr, 10);
            limit.rows = std::strtoull(variables["wsrep_max_ws_rows"].c_str(), nullptr, 10);
        }
        return limit;
    }

    std::size_t packetLimit()
    {
        if (packetLimit_ == 0) {
            MysqlStatement statement(handle_, SqlText("SELECT @@max_allowed_packet"));
            statement.step();
            // The protocol takes some room around the statement.
            packetLimit_ = static_cast<std::size_t>(statement.integer(0)) - 1024;
        }
        return packetLimit_;
    }

    MYSQL* handle_;
    std::size_t packetLimit_ = 0;
    std::optional<TransactionLimit> transactionLimit_;
};
} // namespace

std::unique_ptr<SqlSession> open_mysql_session(const QSqlDatabase& database)
{
    const QVariant handle = database.driver()->handle();
    // The name depends on how the driver was built.
    if (qstrcmp(handle.typeName(), "MYSQL*") != 0 && qstrcmp(handle.typeName(), "st_mysql*") != 0) {
        throw_error("The Qt driver QMYSQL gives no MYSQL handle.", __FILE__, __LINE__);
    }
    return std::make_unique<MysqlSession>(*static_cast<MYSQL* const*>(handle.constData()));
}
} // namespace dbif
