#pragma once

#include "dbif/column_store.h"
#include "dbif/connection.h"
#include "dbif/record_values.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dbif {
/// Inserts rows into the tables of a writing transaction: hands out ids, keeps the inserters, and
/// counts. Ids continue after the highest, which no other writer moves meanwhile.
class RowStore
{
public:
    explicit RowStore(DBIF_Connection connection) : connection_(std::move(connection)) {}

    [[nodiscard]] DBIF_Connection& connection() { return connection_; }

    int nextId(const std::string& table);
    /// The inserter of a table with those columns, made at the first call.
    RowInserter& into(const std::string& table, const std::vector<std::string>& columns);
    void flush();

    void count(std::size_t rows) { rows_ += rows; }

    [[nodiscard]] std::size_t rows() const { return rows_; }

private:
    DBIF_Connection connection_;
    std::map<std::string, int> lastId_;
    std::map<std::string, std::unique_ptr<RowInserter>> inserters_;
    std::vector<std::string> order_;
    std::size_t rows_ = 0;
};

/// Defines keys and writes their values.
class KeyWriter
{
public:
    explicit KeyWriter(RowStore& rows) : rows_(rows) {}

    /// The id of a key's definition, which is added when there is none. Throws for a name that no
    /// keyword could name, and for a category that the table does not have.
    int
    define(RecordTable table, const std::string& name, ValueKind kind, const std::string& category);
    /// Adds the keys of a record that has none of them.
    void add(RecordTable table, int record, const std::vector<KeyValue>& keys);
    /// Adds the keys that a stored record does not have; throws when it has one with another value.
    /// `what` names the record in the error. Whether something was added.
    bool addMissing(
        RecordTable table,
        int record,
        const std::vector<KeyValue>& keys,
        const std::string& what);

private:
    RowStore& rows_;
    std::array<std::map<std::string, int>, kRecordTables.size()> ids_;
};

/// Whether the key says that there is no value.
bool is_missing(const KeyValue& key);
/// The value of a key that was written, as text: that of complex numbers and matrices in the form
/// in which they print.
std::string canonical_text(const KeyValue& key);

/// Refuses a text that cannot be stored and found again: `what` names it.
void check_text(const std::string& text, const std::string& what);
} // namespace dbif
