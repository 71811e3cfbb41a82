#include "dbif/schema/schema_names.h"

#include <algorithm>

namespace dbif {
namespace {
using enum FixedKind;

constexpr FixedColumnFacts kId{"id", Id, Indexed::Yes};
constexpr FixedColumnFacts kTime{"modified_time", Text, Indexed::Yes};
constexpr FixedColumnFacts kUser{"user"};
constexpr FixedColumnFacts kIndexedName{"name", Text, Indexed::Yes};

constexpr std::array kCatalogEntryColumns{
    kId,
    FixedColumnFacts{"application"},
    FixedColumnFacts{"application_version"},
    FixedColumnFacts{"run_type"},
    FixedColumnFacts{"start_time"},
    FixedColumnFacts{"end_time"},
    FixedColumnFacts{"model_text"},
    FixedColumnFacts{"schema_version"},
    kTime,
    kUser};
constexpr std::array kRoutineColumns{
    kId, FixedColumnFacts{"name"}, FixedColumnFacts{"definition"}, kTime, kUser};
constexpr std::array kDieColumns{
    kId,
    FixedColumnFacts{"lot", Text, Indexed::Yes},
    FixedColumnFacts{"wafer"},
    FixedColumnFacts{"die"},
    FixedColumnFacts{"block"},
    kTime,
    kUser};
constexpr std::array kDeviceColumns{
    kId,
    kIndexedName,
    FixedColumnFacts{"device_type"},
    FixedColumnFacts{"parent_subsite_name"},
    FixedColumnFacts{"position_within_subsite"},
    kTime,
    kUser};
constexpr std::array kMeasurementColumns{
    kId, FixedColumnFacts{"temperature", Number, Indexed::Yes}, kTime, kUser};
constexpr std::array kMeasurementConditionColumns{kId, FixedColumnFacts{"name"}, kTime, kUser};
constexpr std::array kSetupColumns{
    kId,
    kIndexedName,
    FixedColumnFacts{"path"},
    FixedColumnFacts{"run_type"},
    FixedColumnFacts{"data_origin"},
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

constexpr std::array<TableFacts, kRecordTables.size()> kFacts{{
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

const TableFacts& facts(RecordTable table)
{
    return kFacts.at(static_cast<std::size_t>(table));
}

const TableFacts* find_table(std::string_view name)
{
    for (const TableFacts& table : kFacts) {
        if (table.name == name) {
            return &table;
        }
    }
    return nullptr;
}

const FixedColumnFacts* find_fixed_column(const TableFacts& table, std::string_view name)
{
    const auto found = std::find_if(
        table.fixedColumns.begin(), table.fixedColumns.end(),
        [name](const FixedColumnFacts& column) { return column.name == name; });
    return found == table.fixedColumns.end() ? nullptr : &*found;
}

const TableFacts* find_data_table(std::string_view dataTable)
{
    constexpr std::string_view kSuffix = "_data";
    return dataTable.ends_with(kSuffix)
               ? find_table(dataTable.substr(0, dataTable.size() - kSuffix.size()))
               : nullptr;
}
} // namespace dbif
