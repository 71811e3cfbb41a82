#include "dbif/copy/record_content.h"

#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/column_store.h"
#include "dbif/sweep/sweep_packing.h"

#include <algorithm>
#include <functional>
#include <map>

namespace dbif {
namespace {
constexpr std::size_t kIdsPerStatement = 500;
constexpr std::size_t kCellsPerGroup = 1U << 20U;

/// Calls `use` with "1, 2, 3" for some of the values after another.
void for_each_list(
    const std::vector<int>& values,
    const std::function<void(const SqlText& list)>& use)
{
    for (std::size_t first = 0; first < values.size(); first += kIdsPerStatement) {
        use(id_sequence(values, first, std::min(kIdsPerStatement, values.size() - first)));
    }
}

std::vector<int> ids_of(const std::vector<RecordContent>& records)
{
    std::vector<int> ids;
    ids.reserve(records.size());
    for (const RecordContent& record : records) {
        ids.push_back(record.id);
    }
    return ids;
}

std::optional<std::string> optional_text(BulkCursor& cursor, int column)
{
    return cursor.isNull(column) ? std::nullopt : std::optional(std::string(cursor.text(column)));
}

std::optional<double> optional_number(BulkCursor& cursor, int column)
{
    return cursor.isNull(column) ? std::nullopt : std::optional(cursor.number(column));
}

void read_fixed(BulkCursor& cursor, const FixedColumnInfo& column, int at, RecordRow* row)
{
    if (column.name == "modified_time") {
        row->time = cursor.text(at);
    } else if (column.name == "user") {
        row->user = optional_text(cursor, at);
    } else if (column.kind == FixedKind::Number) {
        row->number = optional_number(cursor, at);
    } else if (!cursor.isNull(at)) {
        row->columns[std::string(column.name)] = cursor.text(at);
    }
}

SqlText record_statement(const TableInfo& f, std::string_view column, const SqlText& values)
{
    SqlText sql = "SELECT id";
    for (const ParentLink& link : f.parents) {
        sql << ", " << SqlName(link.column);
    }
    for (const FixedColumnInfo& fixed : f.fixedColumns.subspan(1)) {
        sql << ", " << SqlName(fixed.name);
    }
    sql << ", identity" << (f.hasLatest() ? SqlText(", superseded_by") : SqlText());
    return sql << " FROM " << SqlName(f.name) << " WHERE " << SqlName(column) << " IN (" << values
               << ")";
}

RecordContent read_record(BulkCursor& cursor, const TableInfo& f)
{
    RecordContent record;
    int at = 0;
    record.id = cursor.integer(at++);
    for (std::size_t i = 0; i < f.parents.size(); ++i) {
        record.row.links.push_back(cursor.integer(at++));
    }
    for (const FixedColumnInfo& column : f.fixedColumns.subspan(1)) {
        read_fixed(cursor, column, at++, &record.row);
    }
    record.row.identity = cursor.text(at++);
    record.supersededBy = f.hasLatest() ? cursor.integer(at) : 0;
    return record;
}

/// The key in the columns 1 (its unique key), 2 (number) and 3 (text).
void add_key(BulkCursor& cursor, RecordContent* record)
{
    const std::optional<KeyDefinition> parts = split_column_key(cursor.text(1));
    if (parts.has_value()) {
        record->keys.push_back(
            {parts->name, parts->kind, parts->category, cursor.number(2),
             std::string(cursor.text(3))});
    }
}

void read_keys(DBIF_Connection& connection, const TableInfo& f, std::vector<RecordContent>* records)
{
    std::map<int, RecordContent*> byId;
    for (RecordContent& record : *records) {
        byId[record.id] = &record;
    }
    for_each_list(ids_of(*records), [&](const SqlText& list) {
        SqlText sql;
        sql << "SELECT v." << SqlName(f.linkColumn()) << ", c.column_key, v.number, v.text FROM "
            << SqlName(f.dataTable()) << " v JOIN " << SqlName(f.columnTable()) << " c ON c.id = v."
            << SqlName(f.columnLink()) << " WHERE v." << SqlName(f.linkColumn()) << " IN (" << list
            << ") ORDER BY 1, 2";
        BulkCursor cursor(connection, sql);
        while (cursor.next()) {
            add_key(cursor, byId.at(cursor.integer(0)));
        }
    });
}

/// The setups of some measurements, and the place of each of their keys by the key's id.
struct SweepPlaces
{
    std::vector<int> setups;
    std::map<int, SetupContent*> byId;
};

SweepPlaces places_of(const std::vector<MeasurementContent*>& measurements)
{
    SweepPlaces places;
    for (MeasurementContent* measurement : measurements) {
        for_each_setup(*measurement, [&places](SetupContent& setup) {
            places.setups.push_back(setup.record.id);
            places.byId[setup.record.id] = &setup;
        });
    }
    return places;
}

/// Yields the chunks of the setups, key by key.
SqlText chunk_statement(Payload payload, const SqlText& setups)
{
    SqlText sql =
        "SELECT a.setup_id, c.column_key, a.vanto_header, a.points, a.minimum, a.maximum, ";
    if (payload == Payload::Whole) {
        sql << "d.payload";
    } else {
        sql << "substr(d.payload, 1, " << static_cast<int>(kChunkHeadBytes) << ")";
    }
    return sql
           << " FROM setup_association a JOIN setup_column c ON c.id = a.setup_column_id LEFT JOIN "
              "setup_data d ON d.setup_column_id = a.setup_column_id AND d.setup_id = a.setup_id "
              "WHERE a.setup_id IN ("
           << setups << ") ORDER BY a.setup_id, c.column_key, d.chunk";
}

/// Adds the chunk of a row to its key, which is the last one or a new one.
void add_chunk(BulkCursor& cursor, std::vector<SweepContent>* sweeps)
{
    if (sweeps->empty() || sweep_key(sweeps->back()) != cursor.text(1)) {
        const std::optional<KeyDefinition> parts = split_column_key(cursor.text(1));
        if (!parts.has_value()) {
            return;
        }
        sweeps->push_back(
            {parts->name,
             parts->kind,
             parts->category == "IN",
             optional_text(cursor, 2),
             cursor.integer(3),
             optional_number(cursor, 4),
             optional_number(cursor, 5),
             {}});
    }
    if (!cursor.isNull(6)) {
        sweeps->back().chunks.emplace_back(cursor.text(6));
    }
}
} // namespace

std::size_t MeasurementContent::cells() const
{
    std::size_t cells = 0;
    for_each_setup(*this, [&cells](const SetupContent& setup) {
        for (const SweepContent& sweep : setup.sweeps) {
            cells += static_cast<std::size_t>(sweep.points);
        }
    });
    return cells;
}

std::vector<int> part_of(const std::vector<int>& ids, std::size_t first, std::size_t count)
{
    const std::size_t last = std::min(first + count, ids.size());
    return {
        ids.begin() + static_cast<std::ptrdiff_t>(first),
        ids.begin() + static_cast<std::ptrdiff_t>(last)};
}

std::string sweep_key(const SweepContent& sweep)
{
    return column_key(sweep.isInput ? "IN" : "OUT", sweep.kind, sweep.name);
}

std::vector<RecordContent> read_records(
    DBIF_Connection& connection,
    const TableInfo& f,
    std::string_view column,
    const std::vector<int>& values)
{
    std::vector<RecordContent> records;
    for_each_list(values, [&](const SqlText& list) {
        BulkCursor cursor(connection, record_statement(f, column, list));
        while (cursor.next()) {
            records.push_back(read_record(cursor, f));
        }
    });
    std::sort(records.begin(), records.end(), [](const RecordContent& a, const RecordContent& b) {
        return a.id < b.id;
    });
    if (f.keys != KeyKind::None && f.keys != KeyKind::Direction) {
        read_keys(connection, f, &records);
    }
    return records;
}

std::vector<MeasurementContent>
read_measurements(DBIF_Connection& connection, const std::vector<int>& ids)
{
    std::vector<MeasurementContent> measurements;
    std::map<int, std::size_t> measurementById;
    for (RecordContent& record :
         read_records(connection, table_info(RecordTable::Measurement), "id", ids)) {
        measurementById[record.id] = measurements.size();
        measurements.push_back({std::move(record), {}});
    }
    std::vector<RecordContent> conditions = read_records(
        connection, table_info(RecordTable::MeasurementCondition), "measurement_id", ids);
    std::vector<RecordContent> setups = read_records(
        connection, table_info(RecordTable::Setup), "measurement_condition_id", ids_of(conditions));
    std::map<int, std::pair<std::size_t, std::size_t>> conditionById;
    for (RecordContent& record : conditions) {
        const std::size_t measurement = measurementById.at(record.row.links.front());
        std::vector<ConditionContent>& siblings = measurements[measurement].conditions;
        conditionById[record.id] = {measurement, siblings.size()};
        siblings.push_back({std::move(record), {}});
    }
    for (RecordContent& record : setups) {
        const auto [measurement, condition] = conditionById.at(record.row.links.front());
        measurements[measurement].conditions[condition].setups.push_back({std::move(record), {}});
    }
    std::vector<MeasurementContent*> all;
    all.reserve(measurements.size());
    for (MeasurementContent& measurement : measurements) {
        all.push_back(&measurement);
    }
    read_chunks(connection, Payload::Heads, all);
    return measurements;
}

void read_chunks(
    DBIF_Connection& connection,
    Payload payload,
    const std::vector<MeasurementContent*>& measurements)
{
    const SweepPlaces places = places_of(measurements);
    for (const auto& [id, setup] : places.byId) {
        setup->sweeps.clear();
    }
    for_each_list(places.setups, [&](const SqlText& list) {
        BulkCursor cursor(connection, chunk_statement(payload, list));
        while (cursor.next()) {
            add_chunk(cursor, &places.byId.at(cursor.integer(0))->sweeps);
        }
    });
}

std::size_t payload_group(const std::vector<MeasurementContent*>& measurements, std::size_t first)
{
    std::size_t cells = 0;
    std::size_t count = 0;
    while (first + count < measurements.size()) {
        cells += measurements[first + count]->cells();
        if (count > 0 && cells > kCellsPerGroup) {
            break;
        }
        ++count;
    }
    return count;
}
} // namespace dbif
