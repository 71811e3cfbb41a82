#include "dbif/copy/copy_selection.h"

#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/copy/copy_mark.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/schema/schema_names.h"

#include <algorithm>
#include <set>

namespace dbif {
namespace {
constexpr std::size_t kIdsPerStatement = 500;

std::multimap<int, int> read_pairs(DBIF_Connection& source, const SqlText& sql)
{
    std::multimap<int, int> pairs;
    BulkCursor cursor(source, sql);
    while (cursor.next()) {
        pairs.emplace(cursor.integer(0), cursor.integer(1));
    }
    return pairs;
}

std::multimap<int, int> older(DBIF_Connection& source, RecordTable table)
{
    SqlText sql;
    sql << "SELECT superseded_by, id FROM " << SqlName(table_info(table).name)
        << " WHERE superseded_by IS NOT NULL";
    return read_pairs(source, sql);
}

/// Which measurements have setups that setups of another one supersede.
std::multimap<int, int> older_by_setups(DBIF_Connection& source)
{
    return read_pairs(
        source,
        SqlText(
            "SELECT DISTINCT nc.measurement_id, oc.measurement_id FROM setup o JOIN setup n ON n.id = "
            "o.superseded_by JOIN measurement_condition oc ON oc.id = o.measurement_condition_id JOIN "
            "measurement_condition nc ON nc.id = n.measurement_condition_id"));
}

/// What the pairs lead to from `id` in one step.
std::vector<int> next_ids(const std::vector<std::multimap<int, int>>& maps, int id)
{
    std::vector<int> next;
    for (const std::multimap<int, int>& map : maps) {
        const auto [first, last] = map.equal_range(id);
        std::transform(
            first, last, std::back_inserter(next), [](const auto& pair) { return pair.second; });
    }
    return next;
}

/// Adds what can be reached from the ids along the pairs.
void add_reachable(const std::vector<std::multimap<int, int>>& maps, std::set<int>* ids)
{
    std::vector<int> open(ids->begin(), ids->end());
    while (!open.empty()) {
        const int id = open.back();
        open.pop_back();
        const std::vector<int> next = next_ids(maps, id);
        std::copy_if(next.begin(), next.end(), std::back_inserter(open), [ids](int reached) {
            return ids->insert(reached).second;
        });
    }
}

/// Adds the parents that `children` of a table link to.
void add_parents(
    DBIF_Connection& source,
    RecordTable table,
    std::string_view link,
    const std::vector<int>& children,
    std::vector<int>* parents)
{
    std::set<int> all(parents->begin(), parents->end());
    for (std::size_t first = 0; first < children.size(); first += kIdsPerStatement) {
        SqlText sql;
        sql << "SELECT DISTINCT " << SqlName(link) << " FROM " << SqlName(table_info(table).name)
            << " WHERE " << SqlName(link) << " IS NOT NULL AND id IN ("
            << id_sequence(children, first, std::min(kIdsPerStatement, children.size() - first))
            << ")";
        BulkCursor cursor(source, sql);
        while (cursor.next()) {
            all.insert(cursor.integer(0));
        }
    }
    parents->assign(all.begin(), all.end());
}
} // namespace

CopySelection
select_for_copy(DBIF_Connection& source, const DBIF_QueryCondition* condition, bool latestOnly)
{
    const auto matching = [&](RecordTable table) {
        return matching_ids(source, table, condition, latestOnly);
    };
    CopySelection selection;
    selection.olderMeasurements = older(source, RecordTable::Measurement);
    selection.olderSetups = older(source, RecordTable::Setup);
    const std::vector<int> matched = matching(RecordTable::Measurement);
    std::set<int> measurements(matched.begin(), matched.end());
    add_reachable({selection.olderMeasurements, older_by_setups(source)}, &measurements);
    selection.measurements.assign(measurements.begin(), measurements.end());

    selection.dies = matching(RecordTable::Die);
    selection.devices = matching(RecordTable::Device);
    selection.routines = matching(RecordTable::Routine);
    selection.catalogEntries = matching(RecordTable::CatalogEntry);
    const auto addParentsOf = [&](std::string_view link, std::vector<int>* parents) {
        add_parents(source, RecordTable::Measurement, link, selection.measurements, parents);
    };
    addParentsOf("device_id", &selection.devices);
    addParentsOf("routine_id", &selection.routines);
    addParentsOf("catalog_entry_id", &selection.catalogEntries);
    add_parents(source, RecordTable::Device, "die_id", selection.devices, &selection.dies);
    std::erase(selection.catalogEntries, find_copy_mark(source));
    return selection;
}
} // namespace dbif
