#pragma once

#include "dbapi/read/value_column.h"

#include <memory>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <vector>

// Columns of the library as NumPy arrays over the same memory.

namespace dbapi::python {
namespace py = pybind11;

/// Arrays share it, so that it lives as long as the last of them.
using SharedColumn = std::shared_ptr<const ValueColumn>;

/// A read-only array over memory that `owner` keeps.
py::array array_over(const py::dtype& type, std::size_t size, const void* data, py::handle owner);

/// A capsule that keeps what a pointer shares.
template <typename Memory>
py::capsule owner_of(std::shared_ptr<Memory> memory)
{
    return {new std::shared_ptr<Memory>(std::move(memory)), [](void* kept) {
                delete static_cast<std::shared_ptr<Memory>*>(kept);
            }};
}

/// The columns of a table, each on its own.
std::vector<SharedColumn> shared_columns(ColumnTable* table);

/// The same as a Python list of `Column`.
py::list column_list(ColumnTable* table);

/// The type `Column`.
void bind_columns(py::module_& module);
} // namespace dbapi::python
