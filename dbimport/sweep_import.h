#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/record_values.h"
#include "dbimport/import_progress.h"

#include <cstddef>
#include <string>
#include <vector>

// The import of annotated CSV. docs/import.md describes the form of the files.

namespace dbapi {
/// A fault of one file of an import.
struct ImportFault
{
    /// The path as it was given.
    std::string file;
    /// The line, from 1; 0 for the file as a whole.
    std::size_t line = 0;
    /// The fault and how to mend it, in whole sentences.
    std::string text;
};

/// A sweep of an import that supersedes an earlier one of the same identity.
struct SupersedingSweep
{
    std::string file;
    /// The name of its device; empty when it has none.
    std::string device;
};

/// How an import differs from the usual one.
struct ImportOptions
{
    /// Tells whether a file may leave open which device it belongs to. Such sweeps supersede each
    /// other as if they were of one device, so that is a fault otherwise.
    bool allowsAnonymous = false;
};

/// The records that an import stored or, where `faultCount` is above 0, the faults because of which
/// it stored nothing.
struct ImportResult
{
    /// The number of files that were read, and what was made of them. `devices` counts the devices
    /// that the setups belong to, be they new or not.
    std::size_t files = 0;
    std::size_t setups = 0;
    std::size_t points = 0;
    std::size_t devices = 0;
    /// How many stored setups were superseded, and the sweeps that superseded them.
    std::size_t supersededSetups = 0;
    std::vector<SupersedingSweep> superseding;
    /// The keys that the database did not have before.
    std::vector<dbif::NewKey> newKeys;

    /// The first 50 faults, in the order of the files and their lines; `faultCount` counts all.
    std::vector<ImportFault> faults;
    std::size_t faultCount = 0;
    std::size_t faultyFiles = 0;
    /// Tells whether a file could not be read at all.
    bool hasUnreadableFile = false;
    /// The number of files that have no other fault than that they name no device.
    std::size_t anonymousFiles = 0;
};

/// Reads files of annotated CSV (UTF-8) and stores all of them in one transaction, as one catalogue
/// entry. Each file becomes a measurement with one setup. Where a file has a fault, nothing is
/// stored, but all files are read, so that every fault is known.
///
/// `connection` must be open on a measurement database (`dbui::open_connection`); it stays the
/// caller's. Files are read in threads of the call's own; the database and `progress` are used in
/// the calling thread only. When another writer is in its way or the connection is lost, the call
/// starts again from the first file, a few times; `progress` then goes on counting.
///
/// Throws `DBIF_Exception` when the database fails; nothing is stored then either.
ImportResult import_sweeps(
    const DBIF_Connection& connection,
    const std::vector<std::string>& files,
    const ImportProgress& progress = nullptr,
    const ImportOptions& options = {});
} // namespace dbapi
