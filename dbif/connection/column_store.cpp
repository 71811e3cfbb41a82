#include "dbif/connection/column_store.h"

#include "dbif/engine/read_trace.h"
#include "dbif/engine/sql_text.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"

#include <memory>

namespace dbif {
ColumnStore& ColumnStore::of(DBIF_Connection& connection)
{
    return static_cast<ColumnStore&>(
        connection.attachment([] { return std::make_unique<ColumnStore>(); }));
}

void ColumnStore::load(DBIF_Connection& connection, RecordTable table, Definitions* definitions)
{
    const TableInfo& f = table_info(table);
    const TraceStep step(connection.trace(), kDefinitionsStep);
    definitions->list.clear();
    definitions->byKey.clear();
    definitions->readAt = connection.changeToken();
    SqlText sql;
    sql << "SELECT id, name, data_type, "
        << (f.keys == KeyKind::Direction
                ? SqlText("CASE WHEN is_input = 1 THEN 'IN' ELSE 'OUT' END")
                : SqlText("category"))
        << ", column_key FROM " << SqlName(f.columnTable()) << " ORDER BY id";
    const auto rows = connection.prepare(sql);
    while (rows->step()) {
        KeyDefinition definition;
        definition.id = static_cast<int>(rows->integer(0));
        definition.name = rows->text(1);
        definition.kind = value_kind(to_qt(rows->text(2))).value_or(ValueKind::Text);
        definition.category = rows->text(3);
        definition.key = rows->text(4);
        definitions->byKey.emplace(definition.key, definitions->list.size());
        definitions->list.push_back(std::move(definition));
    }
    definitions->isLoaded = true;
}

const KeyDefinition*
ColumnStore::find(DBIF_Connection& connection, RecordTable table, std::string_view key)
{
    Definitions& definitions = definitionsOf(table);
    const bool wasLoaded = definitions.isLoaded;
    if (!wasLoaded) {
        load(connection, table, &definitions);
    }
    auto found = definitions.byKey.find(std::string(key));
    if (found == definitions.byKey.end() && wasLoaded &&
        !(definitions.readAt == connection.changeToken())) {
        load(connection, table, &definitions);
        found = definitions.byKey.find(std::string(key));
    }
    return found == definitions.byKey.end() ? nullptr : &definitions.list[found->second];
}

const std::vector<KeyDefinition>& ColumnStore::all(DBIF_Connection& connection, RecordTable table)
{
    Definitions& definitions = definitionsOf(table);
    if (!definitions.isLoaded) {
        load(connection, table, &definitions);
    }
    return definitions.list;
}

void ColumnStore::refresh()
{
    for (Definitions& definitions : tables_) {
        definitions.isLoaded = false;
    }
}

int definition_id(DBIF_Connection& connection, const TableColumn& key)
{
    if (key.key().id != 0) {
        return key.key().id;
    }
    const KeyDefinition* definition =
        ColumnStore::of(connection).find(connection, key.table(), key.uniqueName());
    return definition == nullptr ? 0 : definition->id;
}

TableColumn
existing_column(DBIF_Connection& connection, const std::string& table, const std::string& column)
{
    const std::optional<TableColumn> named = find_column(table, column);
    const KeyDefinition* definition =
        named.has_value() && named->isKey()
            ? ColumnStore::of(connection).find(connection, named->table(), column)
            : nullptr;
    if (!named.has_value() || (named->isKey() && definition == nullptr)) {
        throw_error(
            "The measurement database has no column \"" + column + "\" in a table \"" + table +
                "\".",
            __FILE__, __LINE__);
    }
    return definition == nullptr ? *named : TableColumn(named->table(), *definition);
}
} // namespace dbif
