#pragma once

#include "dbif/record/record_tables.h"

#include <optional>
#include <string>
#include <type_traits>

namespace dbapi {
/// Calls `visit` with the record class of a table, as `std::type_identity<DBIF_Device>` and its
/// like, and returns what it returns; nothing when no record table has the name.
template <typename Visit>
std::optional<bool> visit_table(const std::string& tablename, const Visit& visit)
{
    std::optional<bool> result;
    const auto tryTable = [&](auto record) {
        using Record = typename decltype(record)::type;
        if (!result.has_value() && tablename == dbif::facts(Record::kTable).name) {
            result = visit(record);
        }
    };
    tryTable(std::type_identity<DBIF_CatalogEntry>());
    tryTable(std::type_identity<DBIF_Device>());
    tryTable(std::type_identity<DBIF_Die>());
    tryTable(std::type_identity<DBIF_Measurement>());
    tryTable(std::type_identity<DBIF_MeasurementCondition>());
    tryTable(std::type_identity<DBIF_Routine>());
    tryTable(std::type_identity<DBIF_Setup>());
    return result;
}

/// Whether the records of a table class can have keys.
template <typename Record>
concept HasKeys = requires
{
    typename Record::KeyColumn;
};
} // namespace dbapi
