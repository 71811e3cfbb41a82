#pragma once

#include "dbif/connection/connection.h"

#include <string>
#include <vector>

namespace dbif {
/// A setup that a newer one of its identity supersedes, and their measurements.
struct SupersededSetup
{
    int setup = 0;
    int newSetup = 0;
    int measurement = 0;
    int newMeasurement = 0;
};

/// Marks the setups, and those of their measurements that thereby lose their last one: such a
/// measurement is superseded by the new measurement that stands last in the list beside it.
void mark_superseded(DBIF_Connection& connection, const std::vector<SupersededSetup>& setups);

/// Marks what the setups from the id `firstNew` on supersede, and returns it in the order of the
/// new setups; nothing when `firstNew` is 0.
std::vector<SupersededSetup> supersede_setups(DBIF_Connection& connection, int firstNew);

/// The setups among those of the ids that are latest beside another latest one of their identity,
/// or are that other one: each of the older with the newest, by time.
std::vector<SupersededSetup>
latest_twins(DBIF_Connection& connection, const std::vector<int>& setups);

/// A link between records: `id` is to be superseded by `by`; 0 clears it.
struct SupersedingLink
{
    int id = 0;
    int by = 0;
};

/// A measurement without setups supersedes older ones of its identity that have none either: these
/// are marked and returned.
std::vector<SupersedingLink>
supersede_measurements(DBIF_Connection& connection, int newer, const std::string& identity);

/// Sets the link of setups or of measurements.
void write_superseding_links(
    DBIF_Connection& connection,
    const std::string& table,
    const std::vector<SupersedingLink>& links);
} // namespace dbif
