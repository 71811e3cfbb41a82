#pragma once

#include "dbif/connection/connection.h"
#include "dbif/schema/schema_names.h"
#include "dbif/value/data_type.h"

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace dbif {
/// One stored key as it is defined: a row of a table's "_column" table.
struct KeyDefinition
{
    int id = 0;
    std::string name;
    ValueKind kind = ValueKind::Text;
    /// Empty for tables whose keys have none; "IN" or "OUT" for setup keys.
    std::string category;
    std::string key;

    [[nodiscard]] bool isInput() const { return category == "IN"; }
};

/// The unique key of a definition: category, data type and name, joined by "|".
std::string column_key(std::string_view category, ValueKind kind, std::string_view name);

/// The parts of a unique key; nothing when the text is none.
struct ColumnKeyParts
{
    std::string category;
    ValueKind kind;
    std::string name;
};

std::optional<ColumnKeyParts> split_column_key(std::string_view key);

/// The definitions of all stored keys, kept with an open connection. A key that is not known is
/// looked for again as soon as the database may have changed, so that one defined meanwhile is
/// found.
class ColumnStore : public ConnectionAttachment
{
public:
    static ColumnStore& of(DBIF_Connection& connection);

    /// The definition of a unique key; null when there is none. Valid until the next `refresh` or
    /// miss.
    const KeyDefinition* find(DBIF_Connection& connection, RecordTable table, std::string_view key);
    /// All definitions of a table, by id.
    const std::vector<KeyDefinition>& all(DBIF_Connection& connection, RecordTable table);
    /// Forgets what was read.
    void refresh();

private:
    struct Definitions
    {
        bool isLoaded = false;
        ChangeToken readAt;
        std::vector<KeyDefinition> list;
        std::unordered_map<std::string, std::size_t> byKey;
    };

    static void load(DBIF_Connection& connection, RecordTable table, Definitions* definitions);

    Definitions& definitionsOf(RecordTable table)
    {
        return tables_.at(static_cast<std::size_t>(table));
    }

    std::array<Definitions, kRecordTables.size()> tables_;
};
} // namespace dbif
