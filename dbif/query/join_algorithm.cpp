#include "dbif/query/join_algorithm.h"

#include "dbif/host/host_string.h"
#include "dbif/schema/table_graph.h"

DBIF_QueryJoinAlgorithm* DBIF_Query::SharedData::getNullQueryJoinAlgorithm()
{
    static DBIF_NullQueryJoinAlgorithm algorithm;
    return &algorithm;
}

void DBIF_NullQueryJoinAlgorithm::computeJoins(DBIF_Query& /*query*/) {}

namespace {
dbif::TableSet tables_of(const DBIF_Query& query)
{
    dbif::TableSet tables;
    for (const QString& name : query.data().tables) {
        const std::string table = dbif::to_utf8(name);
        const dbif::TableInfo* keyed = dbif::find_data_table(table);
        if (const dbif::TableInfo* found = keyed != nullptr ? keyed : dbif::find_table(table)) {
            tables.add(found->table);
        }
    }
    return tables;
}

DBIF_Query::Join join_of(dbif::RecordTable child, dbif::RecordTable parent)
{
    const std::string_view name = dbif::table_info(parent).name;
    dbif::SqlText condition;
    condition << dbif::qualified(name, "id") << " = "
              << dbif::qualified(dbif::table_info(child).name, dbif::link_column(child, parent));
    return {dbif::to_qt(name), condition.toQt()};
}
} // namespace

void DBIF_VantoJoinAlgorithm::computeJoins(DBIF_Query& query)
{
    const dbif::TableSet tables = tables_of(query);
    const dbif::RecordTable base = dbif::meeting_table(tables);
    dbif::TableSet joined{base};
    const auto join = [&](dbif::RecordTable child, dbif::RecordTable parent) {
        if (!joined.has(parent)) {
            joined.add(parent);
            query.addJoin(join_of(child, parent));
        }
    };
    for (const dbif::RecordTable table : dbif::kUpwards) {
        const std::vector<dbif::RecordTable> path =
            tables.has(table) ? dbif::path_up(base, table) : std::vector<dbif::RecordTable>();
        for (std::size_t i = 1; i < path.size(); ++i) {
            join(path[i - 1], path[i]);
        }
    }
}
