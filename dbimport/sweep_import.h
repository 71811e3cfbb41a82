#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/record_values.h"
#include "dbimport/annotated_csv.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// A fault of one file of an import.
struct ImportFault
{
    std::string file;
    std::size_t line = 0;
    std::string text;
};

/// A sweep of an import that supersedes an earlier one of the same identity.
struct SupersedingSweep
{
    std::string file;
    /// The name of its device; empty when it has none.
    std::string device;
};

struct ImportOptions
{
    /// Whether a file may leave open which device it belongs to. Such sweeps supersede each other
    /// as if they were of one device, so that is a fault otherwise.
    bool allowsAnonymous = false;
};

struct ImportResult
{
    std::size_t files = 0;
    std::size_t setups = 0;
    std::size_t points = 0;
    std::size_t devices = 0;
    /// How many setups were superseded, and by which sweeps.
    std::size_t supersededSetups = 0;
    std::vector<SupersedingSweep> superseding;
    /// The keys that the database did not have before.
    std::vector<dbif::NewKey> newKeys;

    /// The first faults in the order of the files; nothing was stored when there is one.
    std::vector<ImportFault> faults;
    std::size_t faultCount = 0;
    std::size_t faultyFiles = 0;
    /// Whether a file could not be read at all.
    bool hasUnreadableFile = false;
    /// How many files have no other fault than that they name no device.
    std::size_t anonymousFiles = 0;
};

/// Reads files of annotated CSV and stores all of them in one transaction, as one catalogue entry,
/// or nothing when any has a fault: then all files are read all the same, so that every fault is
/// known. Each file becomes a measurement with one setup. Repeated a few times when another writer
/// is in its way or the connection is lost. Throws `DBIF_Exception` when the database fails;
/// nothing is stored then either.
ImportResult import_sweeps(
    const DBIF_Connection& connection,
    const std::vector<std::string>& files,
    const ReadProgress& progress = nullptr,
    const ImportOptions& options = {});
} // namespace dbapi
