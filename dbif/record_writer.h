#pragma once

#include "dbif/connection.h"
#include "dbif/packed_sweep.h"
#include "dbif/record_fields.h"
#include "dbif/record_values.h"

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
    /// By lot, wafer, die and block.
    int findOrAddDie(const DieFields& fields);
    /// By name.
    int findOrAddRoutine(const RoutineFields& fields);
    /// By die, name, subsite and position. `die` may be 0. Keys and columns that the device does
    /// not have yet are added; a value that differs from the stored one is an error.
    int
    findOrAddDevice(int die, const DeviceFields& fields, const std::vector<KeyValue>& keys = {});

    int addMeasurement(const MeasurementRecord& measurement);
    int addCondition(
        int measurement,
        const ConditionFields& fields,
        const std::vector<KeyValue>& keys = {});
    /// The columns have equal length. `label` names the setup's source in errors: two setups of one
    /// identity in one transaction are an error that names both.
    int addSetup(
        int condition,
        const SetupFields& fields,
        const std::vector<SetupColumn>& sweep,
        const std::string& label);
    /// The same of columns that `pack_sweep` packed.
    int addPackedSetup(
        int condition,
        const SetupFields& fields,
        const std::vector<PackedColumn>& sweep,
        const std::string& label);

    /// Makes everything durable; collects statistics for the planner after many records. The writer
    /// is of no further use.
    void commit();

private:
    class Work;
    std::unique_ptr<Work> work_;
};
} // namespace dbif
