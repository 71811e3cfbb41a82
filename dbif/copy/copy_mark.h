#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/row_store.h"

#include <string>

namespace dbif {
// Copied records keep their times, which may be older than others that are stored. So that readers
// of the target notice the new records all the same, every transaction of a copy stamps one
// catalogue entry of its own, which is empty otherwise: the mark.

/// The id of the mark; 0 when there is none.
int find_copy_mark(DBIF_Connection& connection);

/// Stamps the mark, which is added when there is none, and returns its id.
int stamp_copy_mark(RowStore& rows, const std::string& stamp);
} // namespace dbif
