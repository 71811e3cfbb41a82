#include "benchmarks/peer_database.h"

#include <array>
#include <charconv>
#include <sqlite3.h>
#include <stdexcept>

namespace bench {
PeerStatement::PeerStatement(PeerDatabase& database, std::string_view sql) : database_(database)
{
    if (sqlite3_prepare_v2(
            database.handle(), sql.data(), static_cast<int>(sql.size()), &statement_, nullptr) !=
        SQLITE_OK) {
        database.fail(std::string(sql));
    }
}

PeerStatement::~PeerStatement()
{
    sqlite3_finalize(statement_);
}

PeerStatement& PeerStatement::bind(int parameter, long long value)
{
    sqlite3_bind_int64(statement_, parameter, value);
    return *this;
}

PeerStatement& PeerStatement::bind(int parameter, double value)
{
    sqlite3_bind_double(statement_, parameter, value);
    return *this;
}

PeerStatement& PeerStatement::bind(int parameter, std::string_view value)
{
    sqlite3_bind_text(
        statement_, parameter, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    return *this;
}

PeerStatement& PeerStatement::bindNull(int parameter)
{
    sqlite3_bind_null(statement_, parameter);
    return *this;
}

bool PeerStatement::step()
{
    const int status = sqlite3_step(statement_);
    if (status != SQLITE_ROW && status != SQLITE_DONE) {
        database_.fail(sqlite3_sql(statement_));
    }
    return status == SQLITE_ROW;
}

void PeerStatement::run()
{
    while (step()) {
    }
    sqlite3_reset(statement_);
}

int PeerStatement::columns() const
{
    return sqlite3_column_count(statement_);
}

int PeerStatement::integer(int column) const
{
    return sqlite3_column_int(statement_, column);
}

std::string PeerStatement::text(int column) const
{
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_FLOAT:
    case SQLITE_INTEGER: {
        std::array<char, 32> digits{};
        const double number = sqlite3_column_double(statement_, column);
        const auto [end, error] =
            std::to_chars(digits.data(), digits.data() + digits.size(), number);
        return {digits.data(), end};
    }
    default:
        return {
            reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
    }
}

PeerDatabase::PeerDatabase(const std::string& path)
{
    if (sqlite3_open(path.c_str(), &handle_) != SQLITE_OK) {
        fail("open " + path);
    }
}

PeerDatabase::~PeerDatabase()
{
    sqlite3_close(handle_);
}

void PeerDatabase::execute(const std::string& sql)
{
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(sql);
    }
}

void PeerDatabase::fail(const std::string& sql) const
{
    throw std::runtime_error(std::string(sqlite3_errmsg(handle_)) + " in: " + sql);
}
} // namespace bench
