#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/packed_sweep.h"
#include "dbif/write/record_fields.h"
#include "dbif/write/record_values.h"
#include "dbif/write/superseding.h"

#include <QtGlobal>

#include <memory>
#include <string>
#include <vector>

namespace dbif {
/// Adds records to a measurement database in one transaction, which holds off other writers.
/// Nothing that is stored is ever overwritten: a die, device or routine that is there already is
/// found by its identity and used, and a setup (or a measurement without setups) supersedes the
/// older one of the same identity.
///
/// Every member throws `DBIF_Exception` with a message that says what is wrong with the data, or on
/// a database error. Without `commit` nothing is stored.
class RecordWriter
{
    Q_DISABLE_COPY_MOVE(RecordWriter)

public:
    explicit RecordWriter(const DBIF_Connection& connection);
    ~RecordWriter();

    int addCatalogEntry(const CatalogEntryFields& fields, const std::vector<KeyValue>& keys = {});
    /// Finds a die by lot, wafer, die and block, or adds it. Returns its id.
    int findOrAddDie(const DieFields& fields);
    /// Finds a routine by its name, or adds it. Returns its id.
    int findOrAddRoutine(const RoutineFields& fields);
    /// Finds a device by die, name, subsite and position, or adds it. Returns its id. `die` may be
    /// 0. Keys and columns that the device does not have yet are added; a value that differs from
    /// the stored one is an error.
    int
    findOrAddDevice(int die, const DeviceFields& fields, const std::vector<KeyValue>& keys = {});

    int addMeasurement(const MeasurementRecord& measurement);
    int addCondition(
        int measurement,
        const ConditionFields& fields,
        const std::vector<KeyValue>& keys = {});
    /// Adds a setup and returns its id. The columns have equal length. `label` names the setup's
    /// source in errors: two setups of one identity in one transaction are an error that names
    /// both.
    int addSetup(
        int condition,
        const SetupFields& fields,
        const std::vector<SetupColumn>& sweep,
        const std::string& label);
    /// The same for columns that `pack_sweep` packed.
    int addPackedSetup(
        int condition,
        const SetupFields& fields,
        const std::vector<PackedColumn>& sweep,
        const std::string& label);

    /// Commits the transaction; collects statistics for the planner after many records. The writer
    /// cannot be used afterwards.
    void commit();

    /// The keys that the database did not have, in the order in which they were written.
    [[nodiscard]] const std::vector<NewKey>& newKeys() const;
    /// The setups that were the latest of their identity until `commit`; none before it.
    [[nodiscard]] const std::vector<SupersededSetup>& supersededSetups() const;
    /// The same of measurements without setups, each with the one that supersedes it.
    [[nodiscard]] const std::vector<SupersedingLink>& supersededMeasurements() const;

private:
    class Work;
    std::unique_ptr<Work> work_;
};
} // namespace dbif
