#pragma once

#include "dbapi/db_columns.h"

#include "benchmarks/comparison.h"
#include "benchmarks/data_store.h"
#include "benchmarks/peer_database.h"

#include <memory>
#include <string>

namespace bench {
/// A database of the library, read through its public calls, and the peer's database with the same
/// data. Members throw `std::runtime_error` when a call fails.
class StoredDatabase
{
public:
    /// `name` is that of the stored connection; `make` makes the databases.
    StoredDatabase(
        DataStore store,
        std::string name,
        std::function<DatabasePair(const DataStore& store)> make);

    /// Makes and opens the databases, unless that is done. Call it before all else.
    void open();

    [[nodiscard]] const std::string& name() const { return name_; }

    [[nodiscard]] PeerDatabase& peer() { return *peer_; }

    /// The values of one keyword.
    [[nodiscard]] std::vector<std::string>
    values(const std::string& keyword, const std::string& query = "") const;
    [[nodiscard]] Values
    values(const std::vector<std::string>& keywords, const std::string& query = "") const;
    /// Keywords that hold numbers.
    [[nodiscard]] Numbers
    numbers(const std::vector<std::string>& keywords, dbapi::ColumnOptions::Order order) const;
    [[nodiscard]] std::set<int> deviceIds(const std::string& query) const;
    [[nodiscard]] std::vector<std::string> deviceValues(int id, const std::string& keyword) const;

private:
    DataStore store_;
    std::string name_;
    std::function<DatabasePair(const DataStore& store)> make_;
    std::unique_ptr<PeerDatabase> peer_;
};
} // namespace bench
