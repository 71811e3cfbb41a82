#pragma once

#include "dbif/schema/schema_names.h"

#include <bitset>
#include <vector>

namespace dbif {
/// A set of record tables.
class TableSet
{
public:
    TableSet() = default;

    TableSet(std::initializer_list<RecordTable> tables)
    {
        for (const RecordTable table : tables) {
            add(table);
        }
    }

    void add(RecordTable table) { bits_.set(static_cast<std::size_t>(table)); }

    void add(const TableSet& other) { bits_ |= other.bits_; }

    [[nodiscard]] bool has(RecordTable table) const
    {
        return bits_.test(static_cast<std::size_t>(table));
    }

    [[nodiscard]] bool isEmpty() const { return bits_.none(); }

    [[nodiscard]] bool isWithin(const TableSet& other) const
    {
        return (bits_ & ~other.bits_).none();
    }

private:
    std::bitset<kRecordTables.size()> bits_;
};

/// The record tables from the bottom of the hierarchy up: every table stands before its parents.
inline constexpr std::array kUpwards{RecordTable::Setup,       RecordTable::MeasurementCondition,
                                     RecordTable::Measurement, RecordTable::CatalogEntry,
                                     RecordTable::Routine,     RecordTable::Device,
                                     RecordTable::Die};

/// The table itself and all tables that its records have a parent in.
TableSet with_ancestors(RecordTable table);
/// The highest table whose records have a parent (or themselves) in each of the tables; the base of
/// a query that reads them side by side.
RecordTable meeting_table(const TableSet& tables);
/// The tables from `table` up to its ancestor `ancestor`, both included.
std::vector<RecordTable> path_up(RecordTable table, RecordTable ancestor);
/// The column of `table` that links to its direct parent.
std::string_view link_column(RecordTable table, RecordTable parent);
} // namespace dbif
