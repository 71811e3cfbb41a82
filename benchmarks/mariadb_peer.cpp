#include "benchmarks/mariadb_peer.h"

#include <limits>
#include <mysql.h>
#include <stdexcept>

namespace bench {
namespace {
using Handle = std::unique_ptr<MYSQL, decltype(&mysql_close)>;
using StatementHandle = std::unique_ptr<MYSQL_STMT, decltype(&mysql_stmt_close)>;

/// The buffer into which the client puts one column of a row.
struct Cell
{
    enum_field_types type = MYSQL_TYPE_STRING;
    long long integer = 0;
    double number = 0;
    std::array<char, 256> text{};
    unsigned long length = 0;
    my_bool isNull = 0;
};

/// A prepared statement. Columns count from 0.
class Statement
{
public:
    Statement(MYSQL* handle, const std::string& sql, const PeerValue& value)
        : sql_(sql), statement_(mysql_stmt_init(handle), &mysql_stmt_close)
    {
        require(mysql_stmt_prepare(statement_.get(), sql.data(), sql.size()) == 0);
        MYSQL_BIND parameter{};
        if (const auto* number = std::get_if<long long>(&value)) {
            parameter.buffer_type = MYSQL_TYPE_LONGLONG;
            parameter.buffer = const_cast<long long*>(number);
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            parameter.buffer_type = MYSQL_TYPE_STRING;
            parameter.buffer = const_cast<char*>(text->data());
            parameter.buffer_length = text->size();
        }
        if (!std::holds_alternative<std::monostate>(value)) {
            require(mysql_stmt_bind_param(statement_.get(), &parameter) == 0);
        }
        require(mysql_stmt_execute(statement_.get()) == 0);
        bindResult();
    }

    bool step()
    {
        const int status = mysql_stmt_fetch(statement_.get());
        require(status == 0 || status == MYSQL_NO_DATA);
        return status == 0;
    }

    [[nodiscard]] int columns() const { return static_cast<int>(cells_.size()); }

    [[nodiscard]] int integer(int column) const { return static_cast<int>(cell(column).integer); }

    [[nodiscard]] double number(int column) const
    {
        const Cell& c = cell(column);
        return c.isNull != 0 ? std::numeric_limits<double>::quiet_NaN() : c.number;
    }

    [[nodiscard]] std::string text(int column) const
    {
        const Cell& c = cell(column);
        if (c.isNull != 0) {
            return {};
        }
        switch (c.type) {
        case MYSQL_TYPE_LONGLONG:
            return number_text(static_cast<double>(c.integer));
        case MYSQL_TYPE_DOUBLE:
            return number_text(c.number);
        default:
            return {c.text.data(), c.length};
        }
    }

private:
    [[nodiscard]] const Cell& cell(int column) const
    {
        return cells_[static_cast<std::size_t>(column)];
    }

    void require(bool isDone)
    {
        if (!isDone) {
            throw std::runtime_error(
                std::string(mysql_stmt_error(statement_.get())) + " in: " + sql_);
        }
    }

    void bindResult()
    {
        const std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> metadata(
            mysql_stmt_result_metadata(statement_.get()), &mysql_free_result);
        const unsigned int count = mysql_num_fields(metadata.get());
        const MYSQL_FIELD* fields = mysql_fetch_fields(metadata.get());
        cells_.resize(count);
        std::vector<MYSQL_BIND> binds(count);
        for (unsigned int i = 0; i < count; ++i) {
            bind(fields[i].type, &cells_[i], &binds[i]);
        }
        require(mysql_stmt_bind_result(statement_.get(), binds.data()) == 0);
    }

    static void bind(enum_field_types type, Cell* cell, MYSQL_BIND* bind)
    {
        bind->is_null = &cell->isNull;
        bind->length = &cell->length;
        if (type == MYSQL_TYPE_LONG || type == MYSQL_TYPE_LONGLONG) {
            cell->type = MYSQL_TYPE_LONGLONG;
            bind->buffer = &cell->integer;
        } else if (type == MYSQL_TYPE_DOUBLE) {
            cell->type = MYSQL_TYPE_DOUBLE;
            bind->buffer = &cell->number;
        } else {
            bind->buffer = cell->text.data();
            bind->buffer_length = cell->text.size();
        }
        bind->buffer_type = cell->type;
    }

    const std::string& sql_;
    StatementHandle statement_;
    std::vector<Cell> cells_;
};

class MariaDbPeer final : public PeerDatabase
{
public:
    explicit MariaDbPeer(const dbif::ConnectionParameters& place)
        : handle_(mysql_init(nullptr), &mysql_close)
    {
        mysql_options(handle_.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
        if (mysql_real_connect(
                handle_.get(), place.host.c_str(), place.user.c_str(), place.password.c_str(),
                place.database.c_str(), static_cast<unsigned>(place.port), nullptr, 0) == nullptr) {
            throw std::runtime_error(mysql_error(handle_.get()));
        }
    }

    Values texts(const std::string& sql, const PeerValue& value) override
    {
        Statement statement(handle_.get(), sql, value);
        return texts_of(statement);
    }

    Numbers numbers(const std::string& sql) override
    {
        Statement statement(handle_.get(), sql, {});
        return numbers_of(statement);
    }

    std::set<int> ids(const std::string& sql, const PeerValue& value) override
    {
        Statement statement(handle_.get(), sql, value);
        return ids_of(statement);
    }

private:
    Handle handle_;
};
} // namespace

std::unique_ptr<PeerDatabase> open_mariadb_peer(const dbif::ConnectionParameters& place)
{
    return std::make_unique<MariaDbPeer>(place);
}
} // namespace bench
