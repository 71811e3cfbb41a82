#pragma once

#include "dbif/copy/copy_selection.h"
#include "dbif/copy/record_content.h"

#include <map>
#include <set>
#include <vector>

namespace dbif {
// Finds the records of a copy that its target has already: those that hold the same, including time
// and user. Of several that hold the same, each is taken once: those in `taken` are left out.

/// The catalogue entries that the target has: ids of the source to ids of the target.
std::map<int, int> recognised_catalog_entries(
    DBIF_Connection& target,
    const std::vector<RecordContent>& records,
    const std::set<int>& taken);

/// The measurements of the target that equal one of the source, by the id of the latter. Brings
/// the conditions and setups of both into the same order.
std::map<int, MeasurementContent> recognised_measurements(
    DBIF_Connection& target,
    std::vector<MeasurementContent>* contents,
    const std::set<int>& taken);

/// Adds the places of a measurement and of all below it; both sides are in the same order.
void note_places(const MeasurementContent& from, const MeasurementContent& to, CopyPlaces* places);
} // namespace dbif
