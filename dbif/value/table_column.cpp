#include "dbif/value/table_column.h"

namespace dbif {
TableColumn TableColumn::id(RecordTable table)
{
    return {table, *find_fixed_column(table_info(table), "id")};
}

std::string_view TableColumn::name() const
{
    return isKey() ? std::string_view(key().name) : fixed().name;
}

std::string_view TableColumn::uniqueName() const
{
    return isKey() ? std::string_view(key().key) : fixed().name;
}

std::string TableColumn::tableName() const
{
    return isKey() ? table_info(table_).dataTable() : std::string(table_info(table_).name);
}

ValueKind TableColumn::kind() const
{
    if (isKey()) {
        return key().kind;
    }
    return fixed().kind == FixedKind::Text ? ValueKind::Text : ValueKind::Double;
}

std::optional<TableColumn> find_column(std::string_view table, std::string_view column)
{
    if (const TableInfo* keyed = find_data_table(table)) {
        std::optional<KeyDefinition> key = split_column_key(column);
        return key.has_value() ? std::optional<TableColumn>({keyed->table, std::move(*key)})
                               : std::nullopt;
    }
    const TableInfo* found = find_table(table);
    const FixedColumnInfo* fixed = found == nullptr ? nullptr : find_fixed_column(*found, column);
    return fixed == nullptr ? std::nullopt : std::optional<TableColumn>({found->table, *fixed});
}

TableSet tables_of(const std::vector<TableColumn>& columns)
{
    TableSet tables;
    for (const TableColumn& column : columns) {
        tables.add(column.table());
    }
    return tables;
}

std::string display_name(const TableColumn& column)
{
    return std::string(table_info(column.table()).name) + (column.isKey() ? " key " : ".") +
           std::string(column.name());
}
} // namespace dbif
