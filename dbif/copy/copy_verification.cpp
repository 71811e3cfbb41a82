#include "dbif/copy/copy_verification.h"

#include "dbif/connection/column_store.h"
#include "dbif/copy/content_digest.h"
#include "dbif/copy/measurement_recognition.h"
#include "dbif/host/exception.h"
#include "dbif/sweep/sweep_packing.h"
#include "dbif/write/record_identity.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <unordered_map>

namespace dbif {
namespace {
constexpr std::size_t kRecordsPerRead = 500;

std::uint64_t number_of(const RecordIdentity& digest)
{
    std::uint64_t number = 0;
    std::memcpy(&number, digest.digest().data(), sizeof number);
    return number;
}

/// What a chunk holds; a damaged one as it stands, so that it equals no other.
std::string content_of(const std::string& chunk, ValueKind kind)
{
    try {
        return chunk_values(chunk, kind, {});
    } catch (const DBIF_Exception&) {
        return chunk;
    }
}

struct Sum
{
    std::size_t rows = 0;
    std::uint64_t checksum = 0;

    void add(std::uint64_t digest)
    {
        ++rows;
        checksum += digest;
    }
};

/// What one of the two databases holds. Links are digested by what they lead to, since ids differ.
class Side
{
public:
    /// A record with its keys; its parents have been added before.
    void add(const TableInfo& f, const RecordContent& record, bool withTime)
    {
        RecordIdentity digest;
        digest.text(f.name).text(record_digest(record, withTime));
        for (std::size_t i = 0; i < f.parents.size(); ++i) {
            digest.text(std::to_string(known(f.parents[i].parent, record.row.links.at(i))));
        }
        const std::uint64_t number = number_of(digest);
        digests_[f.table][record.id] = number;
        sums[std::string(f.name)].add(number);
        Sum& keys = sums[f.dataTable()];
        for (const KeyValue& key : record.keys) {
            RecordIdentity keyDigest;
            keys.add(number_of(keyDigest.text(std::to_string(number)).text(key_digest(key))));
        }
    }

    void add(const SetupContent& setup)
    {
        add(table_info(RecordTable::Setup), setup.record, true);
        const std::string owner = std::to_string(known(RecordTable::Setup, setup.record.id));
        for (const SweepContent& sweep : setup.sweeps) {
            RecordIdentity association;
            sums["setup_association"].add(
                number_of(association.text(owner).text(sweep_digest(sweep))));
            int number = 0;
            for (const std::string& chunk : sweep.chunks) {
                RecordIdentity payload;
                payload.text(owner).text(sweep_key(sweep)).text(std::to_string(number++));
                sums["setup_data"].add(number_of(payload.text(content_of(chunk, sweep.kind))));
            }
        }
    }

    void add(const MeasurementContent& measurement)
    {
        add(table_info(RecordTable::Measurement), measurement.record, true);
        for (const ConditionContent& condition : measurement.conditions) {
            add(table_info(RecordTable::MeasurementCondition), condition.record, true);
            for (const SetupContent& setup : condition.setups) {
                add(setup);
            }
        }
    }

    void addLink(RecordTable table, int older, int newer)
    {
        RecordIdentity digest;
        digest.text(std::to_string(known(table, older)));
        sums["superseded_by"].add(number_of(digest.text(std::to_string(known(table, newer)))));
    }

    std::map<std::string, Sum> sums;

private:
    std::uint64_t known(RecordTable table, int id)
    {
        const auto found = digests_[table].find(id);
        return found == digests_[table].end() ? 0 : found->second;
    }

    std::map<RecordTable, std::unordered_map<int, std::uint64_t>> digests_;
};

/// Takes away what the record of the target has more than that of the source.
void reduce(const RecordContent& source, RecordContent* target)
{
    std::erase_if(target->row.columns, [&source](const auto& column) {
        return !source.row.columns.contains(column.first);
    });
    std::set<std::string> keys;
    for (const KeyValue& key : source.keys) {
        keys.insert(column_key(key.category, key.kind, key.name));
    }
    std::erase_if(target->keys, [&keys](const KeyValue& key) {
        return !keys.contains(column_key(key.category, key.kind, key.name));
    });
}

class Comparison
{
public:
    Comparison(DBIF_Connection& source, DBIF_Connection& target, const CopyProgress& progress)
        : source_(source), target_(target), progress_(progress)
    {}

    void compareRecords(
        RecordTable table,
        const std::vector<int>& ids,
        const std::map<int, int>& places);
    void
    compareSome(const TableInfo& f, const std::vector<int>& ids, const std::map<int, int>& places);
    void compareMeasurements(const std::vector<int>& ids, const std::map<int, int>& places);
    void compareLinks(
        RecordTable table,
        const std::multimap<int, int>& older,
        const std::map<int, int>& places);
    std::vector<CopiedTable> result();

private:
    DBIF_Connection& source_;
    DBIF_Connection& target_;
    const CopyProgress& progress_;
    Side sourceSide_;
    Side targetSide_;
    /// Which record of the target supersedes which, as it was read.
    std::map<RecordTable, std::map<int, int>> targetLinks_;
};

std::vector<int> mapped(const std::vector<int>& ids, const std::map<int, int>& places)
{
    std::vector<int> result;
    for (const int id : ids) {
        const auto found = places.find(id);
        if (found != places.end()) {
            result.push_back(found->second);
        }
    }
    return result;
}

void Comparison::compareRecords(
    RecordTable table,
    const std::vector<int>& ids,
    const std::map<int, int>& places)
{
    for (std::size_t first = 0; first < ids.size(); first += kRecordsPerRead) {
        compareSome(table_info(table), part_of(ids, first, kRecordsPerRead), places);
    }
}

void Comparison::compareSome(
    const TableInfo& f,
    const std::vector<int>& ids,
    const std::map<int, int>& places)
{
    const bool withTime = f.identity.empty();
    std::map<int, RecordContent> copies;
    for (RecordContent& record : read_records(target_, f, "id", mapped(ids, places))) {
        const int id = record.id;
        copies.emplace(id, std::move(record));
    }
    for (const RecordContent& record : read_records(source_, f, "id", ids)) {
        sourceSide_.add(f, record, withTime);
        const auto place = places.find(record.id);
        const auto copy = place == places.end() ? copies.end() : copies.find(place->second);
        if (copy == copies.end()) {
            continue;
        }
        if (!withTime) {
            reduce(record, &copy->second);
        }
        targetSide_.add(f, copy->second, withTime);
    }
}

/// Adds the measurements to a side, and notes what supersedes them and their setups.
void add_measurements(
    DBIF_Connection& connection,
    std::vector<MeasurementContent> contents,
    Side* side,
    std::map<RecordTable, std::map<int, int>>* links)
{
    std::vector<MeasurementContent*> all;
    all.reserve(contents.size());
    for (MeasurementContent& content : contents) {
        all.push_back(&content);
    }
    const auto noteSetup = [links](const SetupContent& setup) {
        (*links)[RecordTable::Setup][setup.record.id] = setup.record.supersededBy;
    };
    for (std::size_t first = 0; first < all.size();) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
        const std::vector<MeasurementContent*> group(
            begin, begin + static_cast<std::ptrdiff_t>(payload_group(all, first)));
        read_chunks(connection, Payload::Whole, group);
        for (MeasurementContent* content : group) {
            side->add(*content);
            const RecordContent& record = content->record;
            (*links)[RecordTable::Measurement][record.id] = record.supersededBy;
            for_each_setup(*content, noteSetup);
            *content = {};
        }
        first += group.size();
    }
}

/// Measurements that the target has a second time. `taken` holds the places of all copies.
std::vector<int>
doubles_of(DBIF_Connection& target, std::vector<MeasurementContent>* contents, std::set<int>* taken)
{
    std::vector<int> doubles;
    for (bool hasMore = true; hasMore;) {
        hasMore = false;
        for (const auto& [id, content] : recognised_measurements(target, contents, *taken)) {
            hasMore = taken->insert(content.record.id).second;
            doubles.push_back(content.record.id);
        }
    }
    return doubles;
}

void Comparison::compareMeasurements(const std::vector<int>& ids, const std::map<int, int>& places)
{
    std::map<RecordTable, std::map<int, int>> ignored;
    std::set<int> taken;
    for (const auto& [from, to] : places) {
        taken.insert(to);
    }
    for (std::size_t first = 0; first < ids.size(); first += kRecordsPerRead) {
        const std::vector<int> some = part_of(ids, first, kRecordsPerRead);
        std::vector<MeasurementContent> contents = read_measurements(source_, some);
        std::vector<int> copies = mapped(some, places);
        const std::vector<int> doubles = doubles_of(target_, &contents, &taken);
        copies.insert(copies.end(), doubles.begin(), doubles.end());
        add_measurements(source_, std::move(contents), &sourceSide_, &ignored);
        add_measurements(target_, read_measurements(target_, copies), &targetSide_, &targetLinks_);
        if (progress_) {
            progress_(std::min(first + kRecordsPerRead, ids.size()));
        }
    }
}

void Comparison::compareLinks(
    RecordTable table,
    const std::multimap<int, int>& older,
    const std::map<int, int>& places)
{
    for (const auto& [newer, olderId] : older) {
        const auto newerPlace = places.find(newer);
        const auto olderPlace = places.find(olderId);
        if (newerPlace == places.end() || olderPlace == places.end()) {
            continue;
        }
        sourceSide_.addLink(table, olderId, newer);
        const int by = targetLinks_[table][olderPlace->second];
        if (by != 0) {
            targetSide_.addLink(table, olderPlace->second, by);
        }
    }
}

std::vector<CopiedTable> Comparison::result()
{
    std::vector<CopiedTable> tables;
    for (const char* name :
         {"die", "device", "device_data", "routine", "catalog_entry", "catalog_entry_data",
          "measurement", "measurement_data", "measurement_condition", "measurement_condition_data",
          "setup", "setup_association", "setup_data", "superseded_by"}) {
        const Sum& source = sourceSide_.sums[name];
        const Sum& target = targetSide_.sums[name];
        tables.push_back({name, source.rows, target.rows, source.checksum, target.checksum});
    }
    return tables;
}
} // namespace

std::vector<CopiedTable> compare_copies(
    DBIF_Connection& source,
    DBIF_Connection& target,
    const CopySelection& selection,
    const CopyPlaces& places,
    const CopyProgress& progress)
{
    Comparison comparison(source, target, progress);
    comparison.compareRecords(RecordTable::Die, selection.dies, places.dies);
    comparison.compareRecords(RecordTable::Device, selection.devices, places.devices);
    comparison.compareRecords(RecordTable::Routine, selection.routines, places.routines);
    comparison.compareRecords(
        RecordTable::CatalogEntry, selection.catalogEntries, places.catalogEntries);
    comparison.compareMeasurements(selection.measurements, places.measurements);
    comparison.compareLinks(
        RecordTable::Measurement, selection.olderMeasurements, places.measurements);
    comparison.compareLinks(RecordTable::Setup, selection.olderSetups, places.setups);
    return comparison.result();
}
} // namespace dbif
