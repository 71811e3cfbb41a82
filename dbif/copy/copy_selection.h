#pragma once

#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <map>
#include <vector>

namespace dbif {
/// The records to copy: ids of the source, ascending.
struct CopySelection
{
    std::vector<int> dies;
    std::vector<int> devices;
    std::vector<int> routines;
    std::vector<int> catalogEntries;
    /// Each with all its conditions and setups.
    std::vector<int> measurements;

    [[nodiscard]] bool isEmpty() const
    {
        return dies.empty() && devices.empty() && routines.empty() && catalogEntries.empty() &&
               measurements.empty();
    }

    /// The superseded measurements and setups of the whole source, by the id of the record that
    /// supersedes them.
    std::multimap<int, int> olderMeasurements;
    std::multimap<int, int> olderSetups;
};

/// Where the records of a selection stand in the target: ids of the source to ids of the target.
struct CopyPlaces
{
    std::map<int, int> dies;
    std::map<int, int> devices;
    std::map<int, int> routines;
    std::map<int, int> catalogEntries;
    std::map<int, int> measurements;
    std::map<int, int> conditions;
    std::map<int, int> setups;
};

/// Selects the records that satisfy a condition, with their history (what the selected measurements
/// and setups supersede, and what that supersedes) and with all parents. The mark of earlier copies
/// (`copy_mark`) is left out.
CopySelection
select_for_copy(DBIF_Connection& source, const DBIF_QueryCondition* condition, bool latestOnly);
} // namespace dbif
