#include "dbif/schema/schema_names.h"

#include <algorithm>

namespace dbif {
namespace {
using enum FixedKind;

constexpr FixedColumnInfo kId{"id", Id, Indexed::Yes};
constexpr FixedColumnInfo kTime{"modified_time", Text, Indexed::Yes};
constexpr FixedColumnInfo kUser{"user"};
constexpr FixedColumnInfo kIndexedName{"name", Text, Indexed::Yes};

constexpr std::array kCatalogEntryColumns{
    kId,
    FixedColumnInfo{"application"},
    FixedColumnInfo{"application_version"},
    FixedColumnInfo{"run_type"},
    FixedColumnInfo{"start_time"},
    FixedColumnInfo{"end_time"},
    FixedColumnInfo{"model_text"},
    FixedColumnInfo{"schema_version"},
    kTime,
    kUser};
constexpr std::array kRoutineColumns{
    kId, FixedColumnInfo{"name"}, FixedColumnInfo{"definition"}, kTime, kUser};
constexpr std::array kDieColumns{
    kId,
    FixedColumnInfo{"lot", Text, Indexed::Yes},
    FixedColumnInfo{"wafer"},
    FixedColumnInfo{"die"},
    FixedColumnInfo{"block"},
    kTime,
    kUser};
constexpr std::array kDeviceColumns{
    kId,
    kIndexedName,
    FixedColumnInfo{"device_type"},
    FixedColumnInfo{"parent_subsite_name"},
    FixedColumnInfo{"position_within_subsite"},
    kTime,
    kUser};
constexpr std::array kMeasurementColumns{
    kId, FixedColumnInfo{"temperature", Number, Indexed::Yes}, kTime, kUser};
constexpr std::array kMeasurementConditionColumns{kId, FixedColumnInfo{"name"}, kTime, kUser};
constexpr std::array kSetupColumns{
    kId,
    kIndexedName,
    FixedColumnInfo{"path"},
    FixedColumnInfo{"run_type"},
    FixedColumnInfo{"data_origin"},
    kTime,
    kUser};

constexpr std::array kDeviceParents{ParentLink{RecordTable::Die, "die_id"}};
constexpr std::array kMeasurementParents{
    ParentLink{RecordTable::Device, "device_id"},
    ParentLink{RecordTable::CatalogEntry, "catalog_entry_id"},
    ParentLink{RecordTable::Routine, "routine_id"}};
constexpr std::array kMeasurementConditionParents{
    ParentLink{RecordTable::Measurement, "measurement_id"}};
constexpr std::array kSetupParents{
    ParentLink{RecordTable::MeasurementCondition, "measurement_condition_id"}};

constexpr std::array<std::string_view, 1> kRoutineIdentity{"name"};
constexpr std::array<std::string_view, 4> kDieIdentity{"lot", "wafer", "die", "block"};
constexpr std::array<std::string_view, 4> kDeviceIdentity{
    "die_id", "name", "parent_subsite_name", "position_within_subsite"};

constexpr std::array<TableInfo, kRecordTables.size()> kTableInfo{{
    {RecordTable::CatalogEntry, "catalog_entry", KeyKind::Plain, {}, kCatalogEntryColumns, {}},
    {RecordTable::Device, "device", KeyKind::Category, kDeviceParents, kDeviceColumns,
     kDeviceIdentity},
    {RecordTable::Die, "die", KeyKind::None, {}, kDieColumns, kDieIdentity},
    {RecordTable::Measurement,
     "measurement",
     KeyKind::Plain,
     kMeasurementParents,
     kMeasurementColumns,
     {}},
    {RecordTable::MeasurementCondition,
     "measurement_condition",
     KeyKind::Category,
     kMeasurementConditionParents,
     kMeasurementConditionColumns,
     {}},
    {RecordTable::Routine, "routine", KeyKind::None, {}, kRoutineColumns, kRoutineIdentity},
    {RecordTable::Setup, "setup", KeyKind::Direction, kSetupParents, kSetupColumns, {}},
}};
} // namespace

const TableInfo& table_info(RecordTable table)
{
    return kTableInfo.at(static_cast<std::size_t>(table));
}

const TableInfo* find_table(std::string_view name)
{
    for (const TableInfo& table : kTableInfo) {
        if (table.name == name) {
            return &table;
        }
    }
    return nullptr;
}

const FixedColumnInfo* find_fixed_column(const TableInfo& table, std::string_view name)
{
    const auto found = std::find_if(
        table.fixedColumns.begin(), table.fixedColumns.end(),
        [name](const FixedColumnInfo& column) { return column.name == name; });
    return found == table.fixedColumns.end() ? nullptr : &*found;
}

const TableInfo* find_data_table(std::string_view dataTable)
{
    constexpr std::string_view kSuffix = "_data";
    return dataTable.ends_with(kSuffix)
               ? find_table(dataTable.substr(0, dataTable.size() - kSuffix.size()))
               : nullptr;
}
} // namespace dbif
