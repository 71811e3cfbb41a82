#pragma once

#include "dbif/connection/connection.h"
#include "dbif/copy/copy_selection.h"

#include <cstddef>
#include <functional>

namespace dbif {
struct CopyOutcome
{
    CopyPlaces places;
    /// Measurements that were written, and that were there already.
    std::size_t copied = 0;
    std::size_t present = 0;
};

/// Called with the number of measurements that are done.
using CopyProgress = std::function<void(std::size_t done)>;

/// Copies the records into the target as they are, with times, users and history. Parents come
/// first, then each measurement in a transaction of its own; what the target has already is
/// recognised by what it holds and left alone, so that a copy that was cut off is completed by
/// running it again. A die, device or routine that the target has is completed; where it differs,
/// the copy stops. A superseded record whose newer one is not copied counts as the latest, unless
/// the target has a newer one of its identity.
///
/// Run it while a read transaction on the source is open. Throws `DBIF_Exception` on a database
/// error, on damaged data of the source (naming setup and key) and on a conflict with a stored
/// record; the measurements that are done stay.
CopyOutcome copy_records(
    DBIF_Connection& source,
    DBIF_Connection& target,
    const CopySelection& selection,
    const CopyProgress& progress = nullptr);
} // namespace dbif
