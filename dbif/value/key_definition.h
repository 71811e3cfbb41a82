#pragma once

#include "dbif/value/data_type.h"

#include <optional>
#include <string>
#include <string_view>

namespace dbif {
/// One stored key as it is defined: a row of a table's "_column" table.
struct KeyDefinition
{
    /// 0 for a key that is known by its text alone and was not looked up in a database yet.
    int id = 0;
    std::string name;
    ValueKind kind = ValueKind::Text;
    /// Empty for tables whose keys have none; "IN" or "OUT" for setup keys.
    std::string category;
    /// Unique within the table; see `column_key`.
    std::string key;

    [[nodiscard]] bool isInput() const { return category == "IN"; }
};

/// The unique key of a definition: category, data type and name, joined by "|".
std::string column_key(std::string_view category, ValueKind kind, std::string_view name);

/// The definition, without an id, that a unique key describes; nothing when the text is none.
std::optional<KeyDefinition> split_column_key(std::string_view key);
} // namespace dbif
