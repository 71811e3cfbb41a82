#pragma once

#include "dbif/connection/connection.h"
#include "dbif/schema/schema_names.h"
#include "dbif/write/record_values.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbif {
/// Inserts rows into the tables of a writing transaction: hands out ids, keeps the inserters, and
/// counts. Ids continue after the highest, which no other writer moves meanwhile. Refuses, by a
/// `DBIF_Exception` of the type `TransactionError`, what is more than the database takes in one
/// transaction, before it is sent.
class RowStore
{
    Q_DISABLE_COPY_MOVE(RowStore)

public:
    explicit RowStore(DBIF_Connection connection);
    ~RowStore() = default;

    [[nodiscard]] DBIF_Connection& connection() { return connection_; }

    /// The id of a new record; throws when the table has none left.
    int nextId(std::string_view table);
    /// The inserter of a table with those columns, made at the first call.
    RowInserter& into(std::string_view table, std::initializer_list<std::string_view> columns);
    /// The same, with columns that are asked for at the first call.
    RowInserter& into(std::string_view table, const std::function<std::vector<SqlName>()>& columns);
    /// Sends the rows that wait.
    void flush();

    [[nodiscard]] std::size_t rows() const { return rows_; }

private:
    class Counted;

    void count(std::size_t bytes);

    DBIF_Connection connection_;
    TransactionLimit limit_;
    std::map<std::string, long long, std::less<>> lastId_;
    std::map<std::string, std::unique_ptr<RowInserter>, std::less<>> inserters_;
    std::size_t rows_ = 0;
    std::size_t bytes_ = 0;
};

/// A record to insert, without its keys.
struct RecordRow
{
    /// The id of the record in each parent table; 0: none.
    std::vector<int> links;
    FixedTexts columns;
    /// The fixed column that holds a number.
    std::optional<double> number;
    std::string time;
    std::optional<std::string> user;
    /// A digest; empty for none.
    std::string identity;
};

/// Inserts the record and returns its id.
int insert_record(RowStore& rows, const TableInfo& f, const RecordRow& record);

/// One key of a setup to insert: what the setup says of it, and its packed values.
struct SweepRow
{
    std::optional<std::string> header;
    long long points = 0;
    std::optional<double> minimum;
    std::optional<double> maximum;
    const std::vector<std::string>& chunks;
};

/// Inserts it; `column` is the id of the key's definition.
void insert_sweep(RowStore& rows, int setup, int column, const SweepRow& sweep);

/// Stamps a stored record, so that readers notice that it has changed.
void set_modified_time(
    DBIF_Connection& connection,
    std::string_view table,
    int id,
    const std::string& time);
} // namespace dbif
