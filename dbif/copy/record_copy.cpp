#include "dbif/copy/record_copy.h"

#include "dbif/connection/write_retry.h"
#include "dbif/copy/content_digest.h"
#include "dbif/copy/copy_mark.h"
#include "dbif/copy/measurement_recognition.h"
#include "dbif/host/exception.h"
#include "dbif/sweep/sweep_packing.h"
#include "dbif/write/key_writer.h"
#include "dbif/write/shared_records.h"
#include "dbif/write/superseding.h"
#include "dbif/write/write_transaction.h"

#include <algorithm>
#include <set>

namespace dbif {
namespace {
constexpr std::size_t kParentsPerTransaction = 1000;
constexpr std::size_t kMeasurementsPerRead = 100;

int place_of(const std::map<int, int>& places, int id)
{
    const auto found = places.find(id);
    return found == places.end() ? 0 : found->second;
}

/// One writing transaction on the target.
struct Writing
{
    explicit Writing(const DBIF_Connection& target)
        : transaction(target), rows(target), keys(rows, NewKeyNames::AsStored), shared(rows, keys)
    {}

    /// Finds or adds a die, device or routine, whose parent's id in the target is in `parents`. A
    /// record that is completed gets a new time.
    SharedRecords::Found
    findOrAdd(const TableInfo& f, const RecordContent& record, const std::map<int, int>* parents)
    {
        RecordRow row = record.row;
        for (int& link : row.links) {
            link = place_of(*parents, link);
        }
        const SharedRecords::Found found = shared.findOrAdd(f, row, record.keys);
        if (found.hasChanged) {
            set_modified_time(rows.connection(), f.name, found.id, transaction.stamp());
        }
        return found;
    }

    void commit()
    {
        const int mark = stamp_copy_mark(rows, transaction.stamp());
        rows.flush();
        transaction.commit("catalog_entry", mark);
    }

    WriteTransaction transaction;
    RowStore rows;
    KeyWriter keys;
    SharedRecords shared;
};

/// Refuses to copy what the source itself could not read.
void check_sweep(const SweepContent& sweep, int setup)
{
    const SweepPlace place{sweep.name, setup};
    SweepArray array;
    array.kind = sweep.kind;
    for (const std::string& chunk : sweep.chunks) {
        unpack(chunk, place, &array);
    }
    check_length(place, array.size(), static_cast<std::size_t>(sweep.points));
}

class Copy
{
public:
    Copy(
        DBIF_Connection& source,
        DBIF_Connection& target,
        const CopySelection& selection,
        const CopyProgress& progress)
        : source_(source), target_(target), selection_(selection), progress_(progress)
    {}

    CopyOutcome run();

private:
    void copyShared(
        RecordTable table,
        const std::vector<int>& ids,
        const std::map<int, int>* parents,
        std::map<int, int>* places);
    std::map<int, int> writeShared(
        const TableInfo& f,
        const std::vector<RecordContent>& records,
        const std::map<int, int>* parents);
    void copyCatalogEntries();
    std::map<int, int>
    writeCatalogEntries(const std::vector<RecordContent>& records, const std::set<int>& taken);
    void copyMeasurements(const std::vector<int>& ids);
    void write(MeasurementContent&& measurement);
    bool foundUnderLock(std::vector<MeasurementContent>* measurement);
    CopyPlaces insert(Writing& writing, const MeasurementContent& measurement);
    void notePresent(const MeasurementContent& from, const MeasurementContent& to);
    static void writeCondition(
        Writing& writing,
        const ConditionContent& condition,
        int measurement,
        CopyPlaces* added);
    static void writeSetup(Writing& writing, const SetupContent& setup, int id);
    void writeLinks(const MeasurementContent& measurement, const CopyPlaces& added);
    void settle();
    void step();

    DBIF_Connection& source_;
    DBIF_Connection& target_;
    const CopySelection& selection_;
    const CopyProgress& progress_;
    CopyOutcome outcome_;
    /// The measurements of the target that are copies of ones of the source.
    std::set<int> taken_;
    /// The value of `writes_so_far` of the target unless others have written since its measurements
    /// were last recognised.
    long long writesExpected_ = 0;
    std::size_t done_ = 0;
};

CopyOutcome Copy::run()
{
    CopyPlaces& places = outcome_.places;
    copyShared(RecordTable::Die, selection_.dies, nullptr, &places.dies);
    copyShared(RecordTable::Device, selection_.devices, &places.dies, &places.devices);
    copyShared(RecordTable::Routine, selection_.routines, nullptr, &places.routines);
    copyCatalogEntries();
    const std::vector<int>& ids = selection_.measurements;
    for (std::size_t first = 0; first < ids.size(); first += kMeasurementsPerRead) {
        copyMeasurements(part_of(ids, first, kMeasurementsPerRead));
    }
    settle();
    return std::move(outcome_);
}

/// Copies shared records in one transaction, and returns the place of each.
std::map<int, int> Copy::writeShared(
    const TableInfo& f,
    const std::vector<RecordContent>& records,
    const std::map<int, int>* parents)
{
    std::map<int, int> written;
    Writing writing(target_);
    bool hasChanged = false;
    for (const RecordContent& record : records) {
        const SharedRecords::Found found = writing.findOrAdd(f, record, parents);
        hasChanged = hasChanged || found.isNew || found.hasChanged;
        written[record.id] = found.id;
    }
    if (hasChanged) {
        writing.commit();
    }
    return written;
}

void Copy::copyShared(
    RecordTable table,
    const std::vector<int>& ids,
    const std::map<int, int>* parents,
    std::map<int, int>* places)
{
    const TableInfo& f = table_info(table);
    for (std::size_t first = 0; first < ids.size(); first += kParentsPerTransaction) {
        const std::vector<RecordContent> records =
            read_records(source_, f, "id", part_of(ids, first, kParentsPerTransaction));
        std::map<int, int> written;
        write_with_retries(target_, [&] { written = writeShared(f, records, parents); });
        places->merge(written);
    }
}

/// Copies the entries that the target does not have, in one transaction, and returns the places of
/// all. They are recognised here, where no other copy can add them meanwhile.
std::map<int, int>
Copy::writeCatalogEntries(const std::vector<RecordContent>& records, const std::set<int>& taken)
{
    Writing writing(target_);
    std::map<int, int> places = recognised_catalog_entries(target_, records, taken);
    if (places.size() == records.size()) {
        return places;
    }
    for (const RecordContent& record : records) {
        if (!places.contains(record.id)) {
            const int id =
                insert_record(writing.rows, table_info(RecordTable::CatalogEntry), record.row);
            writing.keys.add(RecordTable::CatalogEntry, id, record.keys);
            places[record.id] = id;
        }
    }
    writing.commit();
    return places;
}

void Copy::copyCatalogEntries()
{
    const TableInfo& f = table_info(RecordTable::CatalogEntry);
    const std::vector<int>& ids = selection_.catalogEntries;
    std::set<int> taken;
    for (std::size_t first = 0; first < ids.size(); first += kParentsPerTransaction) {
        const std::vector<RecordContent> records =
            read_records(source_, f, "id", part_of(ids, first, kParentsPerTransaction));
        std::map<int, int> places = recognised_catalog_entries(target_, records, taken);
        if (places.size() < records.size()) {
            write_with_retries(target_, [&] { places = writeCatalogEntries(records, taken); });
        }
        for (const auto& [from, to] : places) {
            taken.insert(to);
        }
        outcome_.places.catalogEntries.merge(places);
    }
}

void Copy::copyMeasurements(const std::vector<int>& ids)
{
    std::vector<MeasurementContent> contents = read_measurements(source_, ids);
    std::vector<MeasurementContent*> missing;
    writesExpected_ = writes_so_far(target_);
    const std::map<int, MeasurementContent> known =
        recognised_measurements(target_, &contents, taken_);
    for (MeasurementContent& content : contents) {
        const auto found = known.find(content.record.id);
        if (found == known.end()) {
            missing.push_back(&content);
            continue;
        }
        notePresent(content, found->second);
        step();
    }
    for (std::size_t first = 0; first < missing.size();) {
        const std::size_t count = payload_group(missing, first);
        const auto begin = missing.begin() + static_cast<std::ptrdiff_t>(first);
        read_chunks(source_, Payload::Whole, {begin, begin + static_cast<std::ptrdiff_t>(count)});
        for (std::size_t i = first; i < first + count; ++i) {
            write(std::move(*missing[i]));
            step();
        }
        first += count;
    }
}

void Copy::notePresent(const MeasurementContent& from, const MeasurementContent& to)
{
    note_places(from, to, &outcome_.places);
    taken_.insert(to.record.id);
    ++outcome_.present;
}

void Copy::write(MeasurementContent&& measurement)
{
    for_each_setup(measurement, [](const SetupContent& setup) {
        for (const SweepContent& sweep : setup.sweeps) {
            check_sweep(sweep, setup.record.id);
        }
    });
    std::vector<MeasurementContent> content;
    content.push_back(std::move(measurement));
    bool isThere = false;
    CopyPlaces added;
    write_with_retries(target_, [&] {
        Writing writing(target_);
        isThere = foundUnderLock(&content);
        if (!isThere) {
            added = insert(writing, content.front());
            writing.commit();
        }
    });
    if (isThere) {
        return;
    }
    ++outcome_.copied;
    ++writesExpected_;
    CopyPlaces& places = outcome_.places;
    taken_.insert(added.measurements.begin()->second);
    places.measurements.merge(added.measurements);
    places.conditions.merge(added.conditions);
    places.setups.merge(added.setups);
}

/// Tells whether others, such as a second copy from the same source, have written the measurement
/// since those of the target were recognised. To be called in a writing transaction.
bool Copy::foundUnderLock(std::vector<MeasurementContent>* measurement)
{
    if (writes_so_far(target_) == writesExpected_ + 1) {
        return false;
    }
    const std::map<int, MeasurementContent> found =
        recognised_measurements(target_, measurement, taken_);
    if (found.empty()) {
        return false;
    }
    notePresent(measurement->front(), found.begin()->second);
    return true;
}

/// The places of the measurement and of all below it.
CopyPlaces Copy::insert(Writing& writing, const MeasurementContent& measurement)
{
    const CopyPlaces& places = outcome_.places;
    CopyPlaces added;
    RecordRow row = measurement.record.row;
    row.links = {
        place_of(places.devices, row.links.at(0)), place_of(places.catalogEntries, row.links.at(1)),
        place_of(places.routines, row.links.at(2))};
    const int id = insert_record(writing.rows, table_info(RecordTable::Measurement), row);
    writing.keys.add(RecordTable::Measurement, id, measurement.record.keys);
    added.measurements[measurement.record.id] = id;
    for (const ConditionContent& condition : measurement.conditions) {
        writeCondition(writing, condition, id, &added);
    }
    writing.rows.flush();
    writeLinks(measurement, added);
    return added;
}

void Copy::writeCondition(
    Writing& writing,
    const ConditionContent& condition,
    int measurement,
    CopyPlaces* added)
{
    RecordRow row = condition.record.row;
    row.links = {measurement};
    const int id = insert_record(writing.rows, table_info(RecordTable::MeasurementCondition), row);
    writing.keys.add(RecordTable::MeasurementCondition, id, condition.record.keys);
    added->conditions[condition.record.id] = id;
    for (const SetupContent& setup : condition.setups) {
        RecordRow setupRow = setup.record.row;
        setupRow.links = {id};
        const int setupId = insert_record(writing.rows, table_info(RecordTable::Setup), setupRow);
        writeSetup(writing, setup, setupId);
        added->setups[setup.record.id] = setupId;
    }
}

void Copy::writeSetup(Writing& writing, const SetupContent& setup, int id)
{
    for (const SweepContent& sweep : setup.sweeps) {
        const int column = writing.keys.define(
            RecordTable::Setup, sweep.name, sweep.kind, sweep.isInput ? "IN" : "OUT");
        insert_sweep(
            writing.rows, id, column,
            {sweep.header, sweep.points, sweep.minimum, sweep.maximum, sweep.chunks});
    }
}

/// The links of a record that stands at `id` in the target to what supersedes it, and of those that
/// it supersedes, as far as the target has both.
std::vector<SupersedingLink> links_of(
    const RecordContent& record,
    int id,
    const std::map<int, int>& places,
    const std::multimap<int, int>& allOlder)
{
    std::vector<SupersedingLink> links;
    const int newer = place_of(places, record.supersededBy);
    if (newer != 0) {
        links.push_back({id, newer});
    }
    const auto [first, last] = allOlder.equal_range(record.id);
    for (auto older = first; older != last; ++older) {
        const int olderId = place_of(places, older->second);
        if (olderId != 0) {
            links.push_back({olderId, id});
        }
    }
    return links;
}

void Copy::writeLinks(const MeasurementContent& measurement, const CopyPlaces& added)
{
    const CopyPlaces& places = outcome_.places;
    write_superseding_links(
        target_, "measurement",
        links_of(
            measurement.record, added.measurements.at(measurement.record.id), places.measurements,
            selection_.olderMeasurements));
    for_each_setup(measurement, [&](const SetupContent& setup) {
        write_superseding_links(
            target_, "setup",
            links_of(
                setup.record, added.setups.at(setup.record.id), places.setups,
                selection_.olderSetups));
    });
}

/// Where the target has another latest setup of a copied one's identity, the newer supersedes.
void Copy::settle()
{
    std::vector<int> ids;
    for (const auto& [from, to] : outcome_.places.setups) {
        ids.push_back(to);
    }
    std::sort(ids.begin(), ids.end());
    if (latest_twins(target_, ids).empty()) {
        return;
    }
    write_with_retries(target_, [&] {
        Writing writing(target_);
        mark_superseded(target_, latest_twins(target_, ids));
        writing.commit();
    });
}

void Copy::step()
{
    ++done_;
    if (progress_) {
        progress_(done_);
    }
}
} // namespace

CopyOutcome copy_records(
    DBIF_Connection& source,
    DBIF_Connection& target,
    const CopySelection& selection,
    const CopyProgress& progress)
{
    return Copy(source, target, selection, progress).run();
}
} // namespace dbif
