#pragma once

#include "dbapi/arrow_structures.h"
#include "dbapi/read/value_column.h"

#include <cstddef>
#include <vector>

// Columns as the structures of Arrow, for the calls of db_arrow.h.

namespace dbapi {
/// The schema of a table of these columns; `schema` is overwritten. Throws `std::bad_alloc`.
void make_table_schema(const std::vector<const ValueColumn*>& columns, ArrowSchema* schema);

/// The table as one array, which shares the columns; `array` is overwritten. Throws
/// `std::bad_alloc`.
void make_table_array(const SharedColumns& columns, std::size_t rows, ArrowArray* array);
} // namespace dbapi
