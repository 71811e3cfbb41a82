#pragma once

#include "dbapi/db_columns.h"

#include <cstdint>
#include <memory>
#include <vector>

// The structures of the Arrow C data interface and the Arrow C stream interface, as they are
// published for everybody to declare: https://arrow.apache.org/docs/format/CDataInterface.html and
// CStreamInterface.html. The macros are those that keep a program from declaring them twice.

// NOLINTBEGIN(readability-identifier-naming): published names
extern "C" {
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

struct ArrowSchema
{
    const char* format;
    const char* name;
    const char* metadata;
    int64_t flags;
    int64_t n_children;
    struct ArrowSchema** children;
    struct ArrowSchema* dictionary;
    void (*release)(struct ArrowSchema*);
    void* private_data;
};

struct ArrowArray
{
    int64_t length;
    int64_t null_count;
    int64_t offset;
    int64_t n_buffers;
    int64_t n_children;
    const void** buffers;
    struct ArrowArray** children;
    struct ArrowArray* dictionary;
    void (*release)(struct ArrowArray*);
    void* private_data;
};
#endif

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

struct ArrowArrayStream
{
    int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
    int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
    const char* (*get_last_error)(struct ArrowArrayStream*);
    void (*release)(struct ArrowArrayStream*);
    void* private_data;
};
#endif
}

// NOLINTEND(readability-identifier-naming)

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

/// Columns that others may use beside the stream.
using SharedColumns = std::vector<std::shared_ptr<const ValueColumn>>;

/// Columns of so many rows as an Arrow stream of one array, which shares them. Otherwise as above.
void db_export_arrow_columns(SharedColumns columns, std::size_t rows, ArrowArrayStream* stream);

/// A table as one Arrow array, which takes its columns over, and its schema. Both are overwritten,
/// and whoever uses them calls their `release`.
void db_export_arrow_table(ColumnTable table, ArrowSchema* schema, ArrowArray* array);
} // namespace dbapi
