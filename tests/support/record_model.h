#pragma once

#include "dbif/schema/schema_names.h"
#include "dbif/value/data_type.h"

#include <cmath>
#include <complex>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

// Records in memory, with naive loops over them that compute the expected result of a query.
namespace test_support {
using dbif::RecordTable;
using dbif::ValueKind;

struct ModelValue
{
    /// The text that it prints as; numbers sort by `number`, and come behind values that have none.
    std::string text;
    std::complex<double> number{-HUGE_VAL, -HUGE_VAL};
};

using ModelCell = std::optional<ModelValue>;

struct ModelRecord
{
    int id = 0;
    /// The record itself and all that it belongs to.
    std::map<RecordTable, const ModelRecord*> family;
    /// Equal for two records of which the later supersedes the earlier.
    std::string identity;
    bool isLatest = true;
    /// The values, by the name of a fixed column or the unique key of a key.
    std::map<std::string, ModelValue> values;
    std::size_t points = 0;
    std::map<std::string, std::vector<ModelCell>> sweeps;
};

/// A record with all that it belongs to, and, of a setup, perhaps one of its points.
struct ModelPlace
{
    const ModelRecord* lowest;
    std::optional<std::size_t> point;
};

/// A fixed column, or a key by its unique key.
struct ModelColumn
{
    RecordTable table = RecordTable::CatalogEntry;
    std::string name;
    ValueKind kind = ValueKind::Text;

    [[nodiscard]] bool isKey() const { return name.find('|') != std::string::npos; }

    [[nodiscard]] bool isOnPoints() const { return isKey() && table == RecordTable::Setup; }

    /// Tells whether the column can have a value there.
    [[nodiscard]] bool isAt(const ModelPlace& place) const;
    [[nodiscard]] ModelCell cell(const ModelPlace& place) const;
};

struct ModelQuery
{
    struct Order
    {
        std::size_t column;
        bool isAscending;
    };

    std::vector<ModelColumn> columns;
    std::vector<Order> orders;
    std::function<bool(const ModelPlace&)> condition;
    bool isDistinct = false;
    bool latestOnly = false;
    int limit = -1;
};

using ModelRows = std::vector<std::vector<std::string>>;

class RecordModel
{
public:
    RecordModel();

    /// Adds a record. Its address stays valid.
    ModelRecord& add(RecordTable table, int id, const std::vector<const ModelRecord*>& parents);
    /// Decides what the records that came since the last call supersede.
    void supersede();

    std::deque<ModelRecord>& records(RecordTable table) { return records_[table]; }

    /// The ids of a table's records that the query's condition selects.
    [[nodiscard]] std::vector<int> ids(RecordTable table, const ModelQuery& query) const;
    /// The rows in the order of the query, the rest ascending.
    [[nodiscard]] ModelRows rows(const ModelQuery& query) const;

private:
    [[nodiscard]] std::vector<ModelPlace> places(const ModelQuery& query) const;

    std::map<RecordTable, std::deque<ModelRecord>> records_;
    int knownSetups_ = 0;
};
} // namespace test_support
