#include "dbif/write/superseding.h"

#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"

#include <algorithm>
#include <map>
#include <span>
#include <tuple>

namespace dbif {
namespace {
/// The number of records in one statement.
constexpr std::size_t kRecordsPerStatement = 500;

/// The measurements among these that have setups, all of them superseded.
std::vector<int> without_latest_setup(DBIF_Connection& connection, const std::vector<int>& ids)
{
    std::vector<int> found;
    for (std::size_t first = 0; first < ids.size(); first += kRecordsPerStatement) {
        SqlText sql = "SELECT id FROM measurement WHERE superseded_by IS NULL AND id IN (";
        sql << id_sequence(ids, first, std::min(kRecordsPerStatement, ids.size() - first));
        sql << ") AND NOT EXISTS (SELECT 1 FROM setup JOIN measurement_condition ON "
               "measurement_condition.id = setup.measurement_condition_id WHERE "
               "measurement_condition.measurement_id = measurement.id AND setup.superseded_by IS NULL)";
        BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            found.push_back(cursor.integer(0));
        }
    }
    return found;
}
} // namespace

void write_superseding_links(
    DBIF_Connection& connection,
    const std::string& table,
    const std::vector<SupersedingLink>& links)
{
    for (std::size_t first = 0; first < links.size(); first += kRecordsPerStatement) {
        const std::size_t last = std::min(first + kRecordsPerStatement, links.size());
        const std::span part(links.begin() + static_cast<std::ptrdiff_t>(first), last - first);
        SqlText cases;
        for (const SupersedingLink& link : part) {
            cases << " WHEN " << link.id << " THEN ";
            link.by == 0 ? cases << "NULL" : cases << link.by;
        }
        SqlText sql;
        sql << "UPDATE " << SqlName(table) << " SET superseded_by = CASE id" << cases
            << " END WHERE id IN (" << listed(part, &SupersedingLink::id) << ")";
        connection.inner().execute(sql, __FILE__, __LINE__);
    }
}

void mark_superseded(DBIF_Connection& connection, const std::vector<SupersededSetup>& setups)
{
    std::vector<SupersedingLink> links;
    std::map<int, int> newer;
    std::vector<int> measurements;
    for (const SupersededSetup& by : setups) {
        links.push_back({by.setup, by.newSetup});
        if (newer.emplace(by.measurement, by.newMeasurement).second) {
            measurements.push_back(by.measurement);
        }
        newer[by.measurement] = by.newMeasurement;
    }
    write_superseding_links(connection, "setup", links);
    links.clear();
    for (const int id : without_latest_setup(connection, measurements)) {
        links.push_back({id, newer[id]});
    }
    write_superseding_links(connection, "measurement", links);
}

std::vector<SupersededSetup> supersede_setups(DBIF_Connection& connection, int firstNew)
{
    if (firstNew == 0) {
        return {};
    }
    SqlText sql;
    sql << "SELECT old.id, new.id, old_condition.measurement_id, new_condition.measurement_id FROM setup AS new"
        << connection.inner().dialect().orderedJoin()
        << "setup AS old ON old.identity = new.identity JOIN measurement_condition AS old_condition ON "
           "old_condition.id = old.measurement_condition_id JOIN measurement_condition AS new_condition ON "
           "new_condition.id = new.measurement_condition_id WHERE old.superseded_by IS NULL AND new.id >= "
        << firstNew << " AND old.id < " << firstNew << " ORDER BY new.id, old.id";
    std::vector<SupersededSetup> superseded;
    {
        BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            superseded.push_back(
                {cursor.integer(0), cursor.integer(1), cursor.integer(2), cursor.integer(3)});
        }
    }
    mark_superseded(connection, superseded);
    return superseded;
}

std::vector<SupersededSetup>
latest_twins(DBIF_Connection& connection, const std::vector<int>& setups)
{
    struct Setup
    {
        std::string time;
        int id = 0;
        int measurement = 0;

        bool operator<(const Setup& other) const
        {
            return std::tie(time, id) < std::tie(other.time, other.id);
        }
    };

    std::map<Setup, Setup> newest;
    for (std::size_t first = 0; first < setups.size(); first += kRecordsPerStatement) {
        SqlText sql;
        sql << "SELECT a.id, a.modified_time, ac.measurement_id, b.id, b.modified_time, bc.measurement_id "
               "FROM setup AS a"
            << connection.inner().dialect().orderedJoin()
            << "setup AS b ON b.identity = a.identity JOIN measurement_condition AS ac ON ac.id = "
               "a.measurement_condition_id JOIN measurement_condition AS bc ON bc.id = "
               "b.measurement_condition_id WHERE a.superseded_by IS NULL AND b.superseded_by IS NULL AND "
               "a.id <> b.id AND a.id IN ("
            << id_sequence(setups, first, std::min(kRecordsPerStatement, setups.size() - first))
            << ")";
        BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            Setup a{std::string(cursor.text(1)), cursor.integer(0), cursor.integer(2)};
            Setup b{std::string(cursor.text(4)), cursor.integer(3), cursor.integer(5)};
            const auto& [older, newer] = std::minmax(a, b);
            const auto found = newest.emplace(older, newer).first;
            found->second = std::max(found->second, newer);
        }
    }
    std::vector<SupersededSetup> twins;
    twins.reserve(newest.size());
    for (const auto& [older, newer] : newest) {
        twins.push_back({older.id, newer.id, older.measurement, newer.measurement});
    }
    return twins;
}

std::vector<SupersedingLink>
supersede_measurements(DBIF_Connection& connection, int newer, const std::string& identity)
{
    SqlText sql;
    sql << "SELECT id FROM measurement WHERE superseded_by IS NULL AND id < " << newer
        << " AND identity = " << SqlBlob(identity)
        << " AND NOT EXISTS (SELECT 1 FROM setup JOIN measurement_condition ON measurement_condition.id = "
           "setup.measurement_condition_id WHERE measurement_condition.measurement_id = measurement.id)";
    std::vector<SupersedingLink> links;
    {
        BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            links.push_back({cursor.integer(0), newer});
        }
    }
    write_superseding_links(connection, "measurement", links);
    return links;
}
} // namespace dbif
