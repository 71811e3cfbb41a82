#pragma once

#include "dbif/connection/managed_connection.h"
#include "dbif/value/table_column.h"

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

namespace dbif {
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

/// The column that texts name (see `find_column`), as the database defines it; throws
/// `DBIF_Exception` naming it when there is none.
TableColumn
existing_column(DBIF_Connection& connection, const std::string& table, const std::string& column);

/// The id of a key's definition, which is looked up where the column does not know it; 0 when the
/// key is not defined.
int definition_id(DBIF_Connection& connection, const TableColumn& key);
} // namespace dbif
