#pragma once

#include "dbif/connection/connection.h"
#include "dbif/schema/schema_names.h"
#include "dbif/write/record_values.h"
#include "dbif/write/row_store.h"

#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// A stored record as it is, with its keys (ordered by their unique key).
struct RecordContent
{
    int id = 0;
    RecordRow row;
    /// The id of the record that supersedes it; 0: none.
    int supersededBy = 0;
    std::vector<KeyValue> keys;
};

/// One key of a setup with its packed values.
struct SweepContent
{
    std::string name;
    ValueKind kind = ValueKind::Double;
    bool isInput = false;
    std::optional<std::string> header;
    long long points = 0;
    std::optional<double> minimum;
    std::optional<double> maximum;
    std::vector<std::string> chunks;
};

struct SetupContent
{
    RecordContent record;
    /// Ordered by their unique key.
    std::vector<SweepContent> sweeps;
};

struct ConditionContent
{
    RecordContent record;
    std::vector<SetupContent> setups;
};

/// A measurement with all that hangs below it.
struct MeasurementContent
{
    RecordContent record;
    std::vector<ConditionContent> conditions;

    /// About how much its payload is: values of all keys of all setups.
    [[nodiscard]] std::size_t cells() const;
};

/// Calls `use` for each setup of a measurement.
template <typename Measurement, typename Use>
void for_each_setup(Measurement& measurement, const Use& use)
{
    for (auto& condition : measurement.conditions) {
        for (auto& setup : condition.setups) {
            use(setup);
        }
    }
}

/// What is read of the chunks of a setup's keys.
enum class Payload {
    Heads, ///< the first 16 bytes, which hold the checksum
    Whole
};

/// The records whose `column` ("id", or a link to a parent) is among `values`, ordered by id.
std::vector<RecordContent> read_records(
    DBIF_Connection& connection,
    const TableInfo& f,
    std::string_view column,
    const std::vector<int>& values);

/// The measurements of those ids that there are, ordered by id, with the heads of their chunks.
std::vector<MeasurementContent>
read_measurements(DBIF_Connection& connection, const std::vector<int>& ids);

/// Reads the chunks of the measurements anew.
void read_chunks(
    DBIF_Connection& connection,
    Payload payload,
    const std::vector<MeasurementContent*>& measurements);

/// Up to `count` of the ids, from the place `first` on.
std::vector<int> part_of(const std::vector<int>& ids, std::size_t first, std::size_t count);

/// The unique key of a key of a setup.
std::string sweep_key(const SweepContent& sweep);

/// How many of the measurements from `first` on are read together, so that their payload stays
/// within some 10 MiB; at least one.
std::size_t payload_group(const std::vector<MeasurementContent*>& measurements, std::size_t first);
} // namespace dbif
