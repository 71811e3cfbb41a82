#include "dbimport/measurement_write.h"

#include "dbapi/words/fault.h"
#include "dbif/connection/write_retry.h"
#include "dbif/write/record_writer.h"
#include "dbimport/annotations.h"
#include "dbimport/sweep_values.h"

#include <cstddef>

namespace dbapi {
namespace {
/// The text before what is said of one of several measurements.
std::string label_of(const NewMeasurement& measurement)
{
    return measurement.label.empty() ? "" : measurement.label + ": ";
}

/// The records that the facts tell of; what is wrong with them goes to `faults`.
Annotations read_facts(const NewMeasurement& measurement, bool allowsAnonymous, std::string* faults)
{
    FileFaults found;
    AnnotationReader reader(&found);
    for (const auto& [keyword, value] : measurement.facts) {
        std::string reason;
        if (is_storable_text(keyword, &reason) && is_storable_text(value, &reason)) {
            reader.addKeyword(0, keyword, value);
        } else {
            found.add(0, quoted_beginning(keyword) + ": " + reason);
        }
    }
    Annotations annotations = reader.take();
    if (!allowsAnonymous && !names_device(annotations)) {
        found.add(
            0,
            "It names no device, so it would supersede any other such measurement. Give $DEVNAME, "
            "$SUBSITE or $DEVID.");
    }
    if (measurement.sweep.empty() && !annotations.setup.isEmpty()) {
        found.add(0, "It has facts of a setup, but no columns. Leave $SETNAME and its like out.");
    }
    for (const FileFault& fault : found.kept()) {
        *faults += "\n" + label_of(measurement) + fault.text;
    }
    return annotations;
}

std::vector<Annotations>
read_all_facts(const std::vector<NewMeasurement>& measurements, bool allowsAnonymous)
{
    std::vector<Annotations> all;
    std::string faults;
    for (const NewMeasurement& measurement : measurements) {
        all.push_back(read_facts(measurement, allowsAnonymous, &faults));
        if (all.back().catalogEntry != all.front().catalogEntry) {
            faults += "\n" + label_of(measurement) +
                      "It says something else of the catalogue entry than the first one. Make them "
                      "equal, or write them apart.";
        }
    }
    if (!faults.empty()) {
        throw FaultError(argument_fault("Nothing was written." + faults));
    }
    return all;
}

WrittenMeasurement
store(dbif::RecordWriter& writer, int entry, const Annotations& facts, const NewMeasurement& given)
{
    WrittenMeasurement written;
    written.die = facts.die.isEmpty() ? 0 : writer.findOrAddDie(facts.die.fields);
    if (written.die != 0 || !facts.device.isEmpty()) {
        written.device =
            writer.findOrAddDevice(written.die, facts.device.fields, facts.device.keys);
    }
    written.routine = facts.routine.isEmpty() ? 0 : writer.findOrAddRoutine(facts.routine.fields);
    dbif::MeasurementRecord measurement;
    measurement.catalogEntry = entry;
    measurement.device = written.device;
    measurement.routine = written.routine;
    measurement.temperature = facts.temperature;
    measurement.keys = facts.measurementKeys;
    written.measurement = writer.addMeasurement(measurement);
    if (!given.sweep.empty() || !facts.condition.isEmpty()) {
        written.condition =
            writer.addCondition(written.measurement, facts.condition.fields, facts.condition.keys);
    }
    if (!given.sweep.empty()) {
        written.setup =
            writer.addSetup(written.condition, facts.setup.fields, given.sweep, given.label);
    }
    return written;
}
} // namespace

dbif::SetupColumn new_sweep_column(const std::string& keyword)
{
    dbif::SetupColumn column;
    std::string reason;
    if (!is_storable_text(keyword, &reason) || !make_sweep_column(keyword, &column, &reason)) {
        throw FaultError(argument_fault(quoted_beginning(keyword) + ": " + reason));
    }
    return column;
}

MeasurementWriteResult write_measurements(
    const DBIF_Connection& connection,
    const std::vector<NewMeasurement>& measurements,
    bool allowsAnonymous)
{
    const std::vector<Annotations> facts = read_all_facts(measurements, allowsAnonymous);
    MeasurementWriteResult result;
    if (measurements.empty()) {
        return result;
    }
    dbif::write_with_retries(connection, [&] {
        result = {};
        dbif::RecordWriter writer(connection);
        const RecordParts<dbif::CatalogEntryFields>& entry = facts.front().catalogEntry;
        result.catalogEntry = writer.addCatalogEntry(entry.fields, entry.keys);
        for (std::size_t i = 0; i < measurements.size(); ++i) {
            result.written.push_back(store(writer, result.catalogEntry, facts[i], measurements[i]));
        }
        writer.commit();
        result.newKeys = writer.newKeys();
        result.supersededSetups = writer.supersededSetups();
        result.supersededMeasurements = writer.supersededMeasurements();
    });
    return result;
}
} // namespace dbapi
