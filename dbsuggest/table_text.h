#pragma once

#include "dbsuggest/data_table.h"

#include <cstddef>
#include <limits>
#include <string>

namespace dbapi {
inline constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();

struct TableLayout
{
    /// The number of rows that are shown, from the first on.
    std::size_t shownRows = kAllRows;
    /// Tells whether the headings are bold, by a terminal's escapes.
    bool isBold = false;
    /// Tells whether long values are cut.
    bool isCut = false;
};

/// The data as a table for people, or nothing when it has no rows. Columns of numbers stand right.
std::string table_text(const DataTable& table, const TableLayout& layout);
} // namespace dbapi
