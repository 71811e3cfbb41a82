#include "dbif/schema/table_graph.h"

#include <algorithm>

namespace dbif {
TableSet with_ancestors(RecordTable table)
{
    TableSet tables{table};
    for (const ParentLink& link : table_info(table).parents) {
        tables.add(with_ancestors(link.parent));
    }
    return tables;
}

RecordTable meeting_table(const TableSet& tables)
{
    // From the top down, so that the first that reaches all is the highest.
    const auto highest =
        std::find_if(kUpwards.rbegin(), kUpwards.rend(), [&tables](RecordTable table) {
            return tables.isWithin(with_ancestors(table));
        });
    return highest == kUpwards.rend() ? RecordTable::Setup : *highest;
}

std::vector<RecordTable> path_up(RecordTable table, RecordTable ancestor)
{
    if (table == ancestor) {
        return {table};
    }
    for (const ParentLink& link : table_info(table).parents) {
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
    for (const ParentLink& link : table_info(table).parents) {
        if (link.parent == parent) {
            return link.column;
        }
    }
    return {};
}
} // namespace dbif
