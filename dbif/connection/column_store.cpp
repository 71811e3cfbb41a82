#include "dbif/connection/column_store.h"

#include "dbif/engine/read_trace.h"
#include "dbif/engine/sql_text.h"
#include "dbif/host/host_string.h"

#include <memory>

namespace dbif {
std::string column_key(std::string_view category, ValueKind kind, std::string_view name)
{
    std::string key(category);
    key += "|" + to_utf8(datatype_name(kind)) + "|";
    return key.append(name);
}

std::optional<ColumnKeyParts> split_column_key(std::string_view key)
{
    const std::size_t first = key.find('|');
    const std::size_t second = first == std::string_view::npos ? first : key.find('|', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    const auto kind = value_kind(to_qt(key.substr(first + 1, second - first - 1)));
    if (!kind.has_value()) {
        return std::nullopt;
    }
    return ColumnKeyParts{
        std::string(key.substr(0, first)), *kind, std::string(key.substr(second + 1))};
}

ColumnStore& ColumnStore::of(DBIF_Connection& connection)
{
    return static_cast<ColumnStore&>(
        connection.attachment([] { return std::make_unique<ColumnStore>(); }));
}

void ColumnStore::load(DBIF_Connection& connection, RecordTable table, Definitions* definitions)
{
    const TableFacts& f = facts(table);
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
} // namespace dbif
