#include "dbif/copy/measurement_recognition.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/copy/content_digest.h"

#include <algorithm>
#include <functional>
#include <set>

namespace dbif {
namespace {
constexpr std::size_t kTextsPerStatement = 200;

/// The ids of the records whose time is among the times, ascending.
std::vector<int>
ids_of_times(DBIF_Connection& target, RecordTable table, const std::set<std::string>& times)
{
    std::vector<int> ids;
    for (auto time = times.begin(); time != times.end();) {
        SqlText sql;
        sql << "SELECT id FROM " << SqlName(table_info(table).name) << " WHERE modified_time IN (";
        for (std::size_t i = 0; i < kTextsPerStatement && time != times.end(); ++i, ++time) {
            sql << (i == 0 ? SqlText() : SqlText(", ")) << SqlLiteral(*time);
        }
        BulkCursor cursor(target, sql << ")");
        while (cursor.next()) {
            ids.push_back(cursor.integer(0));
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

/// The ids of the measurements of the target that have the identity and the time of one.
std::vector<int>
candidates(DBIF_Connection& target, const std::vector<MeasurementContent>& contents)
{
    std::set<std::pair<std::string, std::string>> wanted;
    for (const MeasurementContent& content : contents) {
        wanted.emplace(content.record.row.identity, content.record.row.time);
    }
    SqlText sql = "SELECT id, identity, modified_time FROM measurement WHERE identity IN (";
    sql << listed(wanted, [](const auto& identity) { return SqlBlob(identity.first); }) << ")";
    std::vector<int> ids;
    BulkCursor cursor(target, sql);
    while (cursor.next()) {
        if (wanted.contains({std::string(cursor.text(1)), std::string(cursor.text(2))})) {
            ids.push_back(cursor.integer(0));
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}
} // namespace

std::map<int, int> recognised_catalog_entries(
    DBIF_Connection& target,
    const std::vector<RecordContent>& records,
    const std::set<int>& taken)
{
    std::set<std::string> times;
    for (const RecordContent& record : records) {
        times.insert(record.row.time);
    }
    std::multimap<std::string, int> there;
    for (const RecordContent& record : read_records(
             target, table_info(RecordTable::CatalogEntry), "id",
             ids_of_times(target, RecordTable::CatalogEntry, times))) {
        if (!taken.contains(record.id)) {
            there.emplace(keyed_digest(record, true), record.id);
        }
    }
    std::map<int, int> known;
    for (const RecordContent& record : records) {
        const auto found = there.find(keyed_digest(record, true));
        if (found != there.end()) {
            known[record.id] = found->second;
            there.erase(found);
        }
    }
    return known;
}

std::map<int, MeasurementContent> recognised_measurements(
    DBIF_Connection& target,
    std::vector<MeasurementContent>* contents,
    const std::set<int>& taken)
{
    std::map<int, MeasurementContent> known;
    std::vector<int> ids = contents->empty() ? std::vector<int>() : candidates(target, *contents);
    std::erase_if(ids, [&taken](int id) { return taken.contains(id); });
    if (ids.empty()) {
        return known;
    }
    std::multimap<std::string, MeasurementContent> there;
    for (MeasurementContent& content : read_measurements(target, ids)) {
        std::string digest = order_and_digest(&content);
        there.emplace(std::move(digest), std::move(content));
    }
    for (MeasurementContent& content : *contents) {
        const auto found = there.find(order_and_digest(&content));
        if (found != there.end()) {
            known.emplace(content.record.id, std::move(found->second));
            there.erase(found);
        }
    }
    return known;
}

void note_places(const MeasurementContent& from, const MeasurementContent& to, CopyPlaces* places)
{
    places->measurements[from.record.id] = to.record.id;
    for (std::size_t i = 0; i < from.conditions.size(); ++i) {
        const ConditionContent& condition = from.conditions[i];
        places->conditions[condition.record.id] = to.conditions[i].record.id;
        for (std::size_t j = 0; j < condition.setups.size(); ++j) {
            places->setups[condition.setups[j].record.id] = to.conditions[i].setups[j].record.id;
        }
    }
}
} // namespace dbif
