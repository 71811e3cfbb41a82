#include "dbif/table_graph.h"

#include <ranges>

namespace dbif {
TableSet with_ancestors(RecordTable table)
{
    TableSet tables{table};
    for (const ParentLink& link : facts(table).parents) {
        tables.add(with_ancestors(link.parent));
    }
    return tables;
}

RecordTable meeting_table(const TableSet& tables)
{
    // From the top down, so that the first that reaches all is the highest.
    for (const RecordTable table : std::views::reverse(kUpwards)) {
        if (tables.isWithin(with_ancestors(table))) {
            return table;
        }
    }
    return RecordTable::Setup;
}

std::vector<RecordTable> path_up(RecordTable table, RecordTable ancestor)
{
    if (table == ancestor) {
        return {table};
    }
    for (const ParentLink& link : facts(table).parents) {
        if (with_ancestors(link.parent).has(ancestor)) {
            std::vector<RecordTable> path = path_up(link.parent, ancestor);
            path.insert(path.begin(), table);
            return path;
        }
    }
    return {};
}

std::string_view link_column(RecordTable table, RecordTable parent)
{
    for (const ParentLink& link : facts(table).parents) {
        if (link.parent == parent) {
            return link.column;
        }
    }
    return {};
}
} // namespace dbif
