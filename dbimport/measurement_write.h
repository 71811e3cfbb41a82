#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/record_values.h"
#include "dbif/write/superseding.h"

#include <string>
#include <utility>
#include <vector>

// Measurements that a program has in memory, written as an import writes those of files.

namespace dbapi {
/// A measurement that is to be stored.
struct NewMeasurement
{
    /// Keywords and values, as the lines "# KEYWORD = VALUE" of a file for an import give them
    /// (docs/import.md). Numbers are texts.
    std::vector<std::pair<std::string, std::string>> facts;
    /// The columns of its one setup, of equal length; none for a measurement without setups.
    std::vector<dbif::SetupColumn> sweep;
    /// Names it in errors.
    std::string label;
};

/// The ids of the records of a new measurement; 0 for those that it does not have.
struct WrittenMeasurement
{
    int die = 0;
    int device = 0;
    int routine = 0;
    int measurement = 0;
    int condition = 0;
    int setup = 0;
};

struct MeasurementWriteResult
{
    int catalogEntry = 0;
    /// In the order of the new ones.
    std::vector<WrittenMeasurement> written;
    /// The keys that the database did not have before.
    std::vector<dbif::NewKey> newKeys;
    /// What was the latest before: setups, and measurements without setups.
    std::vector<dbif::SupersededSetup> supersededSetups;
    std::vector<dbif::SupersedingLink> supersededMeasurements;
};

/// A column without values that a keyword names ("IND.VG", "OUTX.s11"). Throws `FaultError` for one
/// that names none.
dbif::SetupColumn new_sweep_column(const std::string& keyword);

/// Stores measurements in one transaction, as one catalogue entry. Die, device and routine are
/// found or added, and older measurements are superseded, as by an import. `allowsAnonymous` is
/// that of `ImportOptions`.
///
/// `connection` must be open on a measurement database. When another writer is in the way or the
/// connection is lost, the call starts again, a few times.
///
/// Throws `FaultError` for facts that cannot be stored, with all of them in its text, and
/// `DBIF_Exception` for other data that cannot, and when the database fails; nothing is stored
/// then.
MeasurementWriteResult write_measurements(
    const DBIF_Connection& connection,
    const std::vector<NewMeasurement>& measurements,
    bool allowsAnonymous = false);
} // namespace dbapi
