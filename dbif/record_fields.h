#pragma once

#include "dbif/schema_names.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

// The fixed columns of each table that a writer may fill, as members of the same names. Texts are
// UTF-8. A member without a value is missing in the database, which is not the same as an empty
// text. Ids, times and users come from the database itself.

namespace dbif {
using FieldText = std::optional<std::string>;

/// The name of a column with the member that holds its text.
template <typename Fields>
using FieldName = std::pair<std::string_view, FieldText Fields::*>;

struct CatalogEntryFields
{
    static constexpr RecordTable kTable = RecordTable::CatalogEntry;

    FieldText application = {};
    FieldText application_version = {};
    FieldText run_type = {};
    FieldText start_time = {};
    FieldText end_time = {};
    FieldText model_text = {};
    FieldText schema_version = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<CatalogEntryFields>>(
            {{"application", &CatalogEntryFields::application},
             {"application_version", &CatalogEntryFields::application_version},
             {"run_type", &CatalogEntryFields::run_type},
             {"start_time", &CatalogEntryFields::start_time},
             {"end_time", &CatalogEntryFields::end_time},
             {"model_text", &CatalogEntryFields::model_text},
             {"schema_version", &CatalogEntryFields::schema_version}});
    }

    bool operator==(const CatalogEntryFields& other) const = default;
};

struct RoutineFields
{
    static constexpr RecordTable kTable = RecordTable::Routine;

    FieldText name = {};
    FieldText definition = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<RoutineFields>>(
            {{"name", &RoutineFields::name}, {"definition", &RoutineFields::definition}});
    }

    bool operator==(const RoutineFields& other) const = default;
};

struct DieFields
{
    static constexpr RecordTable kTable = RecordTable::Die;

    FieldText lot = {};
    FieldText wafer = {};
    FieldText die = {};
    FieldText block = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<DieFields>>(
            {{"lot", &DieFields::lot},
             {"wafer", &DieFields::wafer},
             {"die", &DieFields::die},
             {"block", &DieFields::block}});
    }

    bool operator==(const DieFields& other) const = default;
};

struct DeviceFields
{
    static constexpr RecordTable kTable = RecordTable::Device;

    FieldText name = {};
    FieldText device_type = {};
    FieldText parent_subsite_name = {};
    FieldText position_within_subsite = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<DeviceFields>>(
            {{"name", &DeviceFields::name},
             {"device_type", &DeviceFields::device_type},
             {"parent_subsite_name", &DeviceFields::parent_subsite_name},
             {"position_within_subsite", &DeviceFields::position_within_subsite}});
    }

    bool operator==(const DeviceFields& other) const = default;
};

struct ConditionFields
{
    static constexpr RecordTable kTable = RecordTable::MeasurementCondition;

    FieldText name = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<ConditionFields>>({{"name", &ConditionFields::name}});
    }

    bool operator==(const ConditionFields& other) const = default;
};

struct SetupFields
{
    static constexpr RecordTable kTable = RecordTable::Setup;

    FieldText name = {};
    FieldText path = {};
    FieldText run_type = {};
    FieldText data_origin = {};

    static constexpr auto columns()
    {
        return std::to_array<FieldName<SetupFields>>(
            {{"name", &SetupFields::name},
             {"path", &SetupFields::path},
             {"run_type", &SetupFields::run_type},
             {"data_origin", &SetupFields::data_origin}});
    }

    bool operator==(const SetupFields& other) const = default;
};

/// Sets the member of a column. False, with nothing set, when there is no such member.
template <typename Fields>
bool set_field(std::string_view column, std::string text, Fields* fields)
{
    for (const auto& [name, member] : Fields::columns()) {
        if (name == column) {
            fields->*member = std::move(text);
            return true;
        }
    }
    return false;
}

/// Calls `use` with the column and the text of each member that has a value.
template <typename Fields, typename Use>
void for_each_field(const Fields& fields, const Use& use)
{
    for (const auto& [name, member] : Fields::columns()) {
        if ((fields.*member).has_value()) {
            use(name, *(fields.*member));
        }
    }
}
} // namespace dbif
