#pragma once

#include "dbif/write/record_writer.h"
#include "dbimport/annotations.h"
#include "dbimport/file_faults.h"
#include "dbimport/import_progress.h"

#include <string>
#include <vector>

namespace dbapi {
/// One sweep as its file holds it: lines "# KEYWORD = VALUE", a header row of setup keywords, then
/// a row per point (comma-separated, RFC 4180; UTF-8).
struct AnnotatedCsv
{
    Annotations annotations;
    /// The columns with their values, all of the length `points`; empty when there are faults.
    std::vector<dbif::SetupColumn> columns;
    std::size_t points = 0;
    /// All that is wrong with the file, in the order of its lines.
    FileFaults faults;
    /// Tells whether the file could not be read at all; `faults` says why.
    bool isUnreadable = false;
};

/// Reads a file, block by block: only its columns are held in memory. Never throws on account of
/// the file; the result tells what is wrong with it.
AnnotatedCsv read_annotated_csv(const std::string& path, const ImportProgress& progress = nullptr);
} // namespace dbapi
