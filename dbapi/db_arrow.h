#pragma once

#include "dbapi/arrow_structures.h"
#include "dbapi/db_columns.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace dbapi {
// A table is an Arrow struct with a field for each column, by its keyword:
//
//     Number   double ("g")
//     Integer  int64 ("l")
//     Complex  fixed-size list of real and imaginary part ("+w:2" of "g")
//     Matrix   list of rows, lists of complex numbers ("+L" of "+L" of "+w:2" of "g")
//     Text     int32 ("i") with a dictionary of texts ("U"), each of which stands once
//     Time     timestamp in microseconds, UTC ("tsu:UTC")
//
// 'No value' is null. Numbers, ids, times, complex numbers and the codes of texts are the columns'
// own memory, which the arrays own. Of a field's metadata, "dbapi.table", "dbapi.name",
// "dbapi.category", "dbapi.datatype" and "dbapi.unit" tell what the keyword stands for; what is
// empty is left out. Matrices of one column may differ in size.

/// The batches of a reader as an Arrow stream, which owns the reader; `stream` is overwritten, and
/// whoever uses it calls its `release`. The callbacks throw nothing: what fails gives ECANCELED,
/// ENOMEM or EIO, and `get_last_error` the text. A stream may be used in any thread, by one at a
/// time; its arrays are on their own, and stay valid after it.
void db_export_arrow_stream(std::unique_ptr<ColumnReader> reader, ArrowArrayStream* stream);

/// Columns of so many rows as an Arrow stream of one array, which shares them. Otherwise as above.
void db_export_arrow_columns(SharedColumns columns, std::size_t rows, ArrowArrayStream* stream);

/// A table as one Arrow array, which takes its columns over, and its schema. Both are overwritten,
/// and whoever uses them calls their `release`.
void db_export_arrow_table(ColumnTable table, ArrowSchema* schema, ArrowArray* array);
} // namespace dbapi
