#pragma once

#include "dbif/schema/schema_names.h"
#include "dbif/schema/table_graph.h"
#include "dbif/value/key_definition.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace dbif {
/// A column of a record table: a fixed one, which every record of the table has, or a key that
/// users defined. This is what a keyword resolves to, what a condition compares, and where the
/// values of a result come from.
class TableColumn
{
public:
    /// `column` is one of the table's fixed columns (`table_info`).
    TableColumn(RecordTable table, const FixedColumnInfo& column) : table_(table), column_(&column)
    {}

    TableColumn(RecordTable table, KeyDefinition key) : table_(table), column_(std::move(key)) {}

    /// The column of the table's record ids.
    static TableColumn id(RecordTable table);

    [[nodiscard]] RecordTable table() const { return table_; }

    [[nodiscard]] bool isKey() const { return std::holds_alternative<KeyDefinition>(column_); }

    /// The fixed column; only where `isKey` is false.
    [[nodiscard]] const FixedColumnInfo& fixed() const
    {
        return *std::get<const FixedColumnInfo*>(column_);
    }

    /// The definition of the key; only where `isKey` is true.
    [[nodiscard]] const KeyDefinition& key() const { return std::get<KeyDefinition>(column_); }

    /// The name that users know it by.
    [[nodiscard]] std::string_view name() const;
    /// The name by which conditions and queries refer to it: the unique key of a key, the name of a
    /// fixed column.
    [[nodiscard]] std::string_view uniqueName() const;
    /// The table that goes with `uniqueName`: the data table of a key, else the record table.
    [[nodiscard]] std::string tableName() const;
    /// The data type of its values; whole numbers count as `Double`.
    [[nodiscard]] ValueKind kind() const;

    [[nodiscard]] bool isIdOf(RecordTable records) const
    {
        return !isKey() && table_ == records && fixed().kind == FixedKind::Id;
    }

    /// Tells whether each point of a setup has a value of its own.
    [[nodiscard]] bool isOnPoints() const { return isKey() && table_ == RecordTable::Setup; }

    /// Same table and same column; ids of definitions take no part.
    friend bool operator==(const TableColumn& a, const TableColumn& b)
    {
        return a.table_ == b.table_ && a.isKey() == b.isKey() && a.uniqueName() == b.uniqueName();
    }

private:
    RecordTable table_;
    std::variant<const FixedColumnInfo*, KeyDefinition> column_;
};

/// The column that texts name: a record table and its fixed column, or a data table and the unique
/// key of one of its keys, whether or not a database defines it. Nothing when there is none.
std::optional<TableColumn> find_column(std::string_view table, std::string_view column);

TableSet tables_of(const std::vector<TableColumn>& columns);

/// The name of a column in errors: "device.name", "device key W".
std::string display_name(const TableColumn& column);
} // namespace dbif
