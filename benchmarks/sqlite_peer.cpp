#include "benchmarks/sqlite_peer.h"

#include <QtGlobal>

#include <limits>
#include <sqlite3.h>
#include <stdexcept>

namespace bench {
namespace {
[[noreturn]] void fail(sqlite3* handle, const std::string& sql)
{
    throw std::runtime_error(std::string(sqlite3_errmsg(handle)) + " in: " + sql);
}

/// A prepared statement. Columns count from 0.
class Statement
{
    Q_DISABLE_COPY_MOVE(Statement)

public:
    Statement(sqlite3* handle, const std::string& sql, const PeerValue& value) : handle_(handle)
    {
        if (sqlite3_prepare_v2(
                handle, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr) !=
            SQLITE_OK) {
            fail(handle, sql);
        }
        if (const auto* number = std::get_if<long long>(&value)) {
            sqlite3_bind_int64(statement_, 1, *number);
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            sqlite3_bind_text(
                statement_, 1, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
        }
    }

    ~Statement() { sqlite3_finalize(statement_); }

    bool step()
    {
        const int status = sqlite3_step(statement_);
        if (status != SQLITE_ROW && status != SQLITE_DONE) {
            fail(handle_, sqlite3_sql(statement_));
        }
        return status == SQLITE_ROW;
    }

    [[nodiscard]] int columns() const { return sqlite3_column_count(statement_); }

    [[nodiscard]] int integer(int column) const { return sqlite3_column_int(statement_, column); }

    [[nodiscard]] double number(int column) const
    {
        return sqlite3_column_type(statement_, column) == SQLITE_NULL
                   ? std::numeric_limits<double>::quiet_NaN()
                   : sqlite3_column_double(statement_, column);
    }

    [[nodiscard]] std::string text(int column) const
    {
        switch (sqlite3_column_type(statement_, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_FLOAT:
        case SQLITE_INTEGER:
            return number_text(sqlite3_column_double(statement_, column));
        default:
            return {
                reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)),
                static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
        }
    }

private:
    sqlite3* handle_;
    sqlite3_stmt* statement_ = nullptr;
};

class SqlitePeer final : public PeerDatabase
{
    Q_DISABLE_COPY_MOVE(SqlitePeer)

public:
    explicit SqlitePeer(const std::string& path)
    {
        if (sqlite3_open(path.c_str(), &handle_) != SQLITE_OK) {
            fail(handle_, "open " + path);
        }
    }

    ~SqlitePeer() override { sqlite3_close(handle_); }

    Values texts(const std::string& sql, const PeerValue& value) override
    {
        Statement statement(handle_, sql, value);
        return texts_of(statement);
    }

    Numbers numbers(const std::string& sql) override
    {
        Statement statement(handle_, sql, {});
        return numbers_of(statement);
    }

    std::set<int> ids(const std::string& sql, const PeerValue& value) override
    {
        Statement statement(handle_, sql, value);
        return ids_of(statement);
    }

private:
    sqlite3* handle_ = nullptr;
};
} // namespace

std::unique_ptr<PeerDatabase> open_sqlite_peer(const std::string& path)
{
    return std::make_unique<SqlitePeer>(path);
}
} // namespace bench
