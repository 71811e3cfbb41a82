#pragma once

#include <QString>

#include <array>
#include <span>
#include <string>
#include <string_view>

/// The published texts of data types and data origins.
// NOLINTBEGIN(readability-identifier-naming): published names
inline const QString DOUBLE_DATATYPE = QStringLiteral("DOUBLE");
inline const QString TEXT_DATATYPE = QStringLiteral("TEXT");
inline const QString COMPLEX_NUMBER_DATATYPE = QStringLiteral("COMPLEX");
inline const QString COMPLEX_MATRIX_DATATYPE = QStringLiteral("MATRIX");
inline const QString MEASURED_DATA_ORIGIN = QStringLiteral("MEASURED");
inline const QString SIMULATED_DATA_ORIGIN = QStringLiteral("SIMULATED");
inline const QString SQL_NULL = QStringLiteral("SQL_NULL");

// NOLINTEND(readability-identifier-naming)

namespace dbif {
/// The version of the schema that this code writes and reads.
inline constexpr int kSchemaVersion = 1;

/// The record tables, in the order in which a table name is looked up.
enum class RecordTable {
    CatalogEntry,
    Device,
    Die,
    Measurement,
    MeasurementCondition,
    Routine,
    Setup
};

inline constexpr std::array kRecordTables{
    RecordTable::CatalogEntry,
    RecordTable::Device,
    RecordTable::Die,
    RecordTable::Measurement,
    RecordTable::MeasurementCondition,
    RecordTable::Routine,
    RecordTable::Setup};

/// The property that tells the keys of a table apart, besides name and data type.
enum class KeyKind { None, Plain, Category, Direction };

/// The kind of the values in a fixed column. A number is compared approximately, an id exactly, a
/// text by its characters.
enum class FixedKind { Id, Number, Text };

/// Tells whether a fixed column has an index.
enum class Indexed { No, Yes };

struct FixedColumnInfo
{
    std::string_view name;
    FixedKind kind = FixedKind::Text;
    Indexed indexed = Indexed::No;
};

/// The column of a table that holds the id of a record in `parent`.
struct ParentLink
{
    RecordTable parent;
    std::string_view column;
};

/// The description of a record table: all that differs between the seven.
struct TableInfo
{
    RecordTable table;
    std::string_view name;
    KeyKind keys;
    std::span<const ParentLink> parents;
    std::span<const FixedColumnInfo> fixedColumns;
    /// The columns whose digest identifies a record; empty for tables whose records are always new.
    std::span<const std::string_view> identity;

    [[nodiscard]] std::string linkColumn() const { return std::string(name) + "_id"; }

    [[nodiscard]] std::string columnTable() const { return std::string(name) + "_column"; }

    [[nodiscard]] std::string columnLink() const { return std::string(name) + "_column_id"; }

    [[nodiscard]] std::string dataTable() const { return std::string(name) + "_data"; }

    [[nodiscard]] std::string associationTable() const
    {
        return std::string(name) + "_association";
    }

    /// Tells whether later records supersede earlier ones.
    [[nodiscard]] bool hasLatest() const
    {
        return table == RecordTable::Measurement || table == RecordTable::Setup;
    }

    [[nodiscard]] std::string latestView() const { return "latest_" + std::string(name); }
};

const TableInfo& table_info(RecordTable table);
/// The record table of that name; null when there is none.
const TableInfo* find_table(std::string_view name);
/// The fixed column of that name; null when the table has none.
const FixedColumnInfo* find_fixed_column(const TableInfo& table, std::string_view name);
/// The record table whose keys stand in the data table of that name; null when there is none.
const TableInfo* find_data_table(std::string_view dataTable);
} // namespace dbif
