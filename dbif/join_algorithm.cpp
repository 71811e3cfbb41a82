#include "dbif/join_algorithm.h"

#include "dbif/host_string.h"
#include "dbif/table_graph.h"

DBIF_QueryJoinAlgorithm* DBIF_Query::SharedData::getNullQueryJoinAlgorithm()
{
    static DBIF_NullQueryJoinAlgorithm algorithm;
    return &algorithm;
}

void DBIF_NullQueryJoinAlgorithm::computeJoins(DBIF_Query& /*query*/) {}

void DBIF_VantoJoinAlgorithm::computeJoins(DBIF_Query& query)
{
    dbif::TableSet tables;
    for (const QString& name : query.data().tables) {
        const std::string table = dbif::to_utf8(name);
        const dbif::TableFacts* keyed = dbif::find_data_table(table);
        if (const dbif::TableFacts* found = keyed != nullptr ? keyed : dbif::find_table(table)) {
            tables.add(found->table);
        }
    }
    const dbif::RecordTable base = dbif::meeting_table(tables);
    dbif::TableSet joined{base};
    for (const dbif::RecordTable table : dbif::kUpwards) {
        if (!tables.has(table)) {
            continue;
        }
        const std::vector<dbif::RecordTable> path = dbif::path_up(base, table);
        for (std::size_t i = 1; i < path.size(); ++i) {
            if (joined.has(path[i])) {
                continue;
            }
            joined.add(path[i]);
            const std::string_view parent = dbif::facts(path[i]).name;
            dbif::SqlText condition;
            condition << dbif::qualified(parent, "id") << " = "
                      << dbif::qualified(
                             dbif::facts(path[i - 1]).name,
                             dbif::link_column(path[i - 1], path[i]));
            query.addJoin({dbif::to_qt(parent), condition.toQt()});
        }
    }
}
