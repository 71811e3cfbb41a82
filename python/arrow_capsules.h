#pragma once

#include "dbapi/db_columns.h"

#include <memory>
#include <pybind11/pybind11.h>

// Arrow streams as Python hands them on: capsules named "arrow_array_stream", which release a
// stream that nobody took out of them.

namespace dbapi::python {
namespace py = pybind11;

/// The batches of a reader, which the stream takes over.
py::capsule stream_capsule(std::unique_ptr<ColumnReader> reader);

/// Adds `table_stream`, which gives the stream of a table that is in memory.
void bind_arrow(py::module_& module);
} // namespace dbapi::python
