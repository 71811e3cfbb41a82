#pragma once

#include "dbif/copy/copy_selection.h"
#include "dbif/copy/record_copy.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbif {
/// The rows of one table that were copied, on both sides.
struct CopiedTable
{
    std::string name;
    std::size_t sourceRows = 0;
    std::size_t targetRows = 0;
    /// Sums of digests of the rows, which do not depend on ids or on the order, so that the sums of
    /// equal rows are equal.
    std::uint64_t sourceChecksum = 0;
    std::uint64_t targetChecksum = 0;

    [[nodiscard]] bool isEqual() const
    {
        return sourceRows == targetRows && sourceChecksum == targetChecksum;
    }
};

/// Reads all records of the selection from both sides again, with the whole payload, and compares
/// them table by table; "superseded_by" is the links between records of the selection. Of a die,
/// device or routine only what the source holds is compared, without time and user, because the
/// target may have had it before, with more. A measurement that the target holds more often than
/// the source counts as often as the target holds it. Throws `DBIF_Exception` on a database error.
std::vector<CopiedTable> compare_copies(
    DBIF_Connection& source,
    DBIF_Connection& target,
    const CopySelection& selection,
    const CopyPlaces& places,
    const CopyProgress& progress = nullptr);
} // namespace dbif
