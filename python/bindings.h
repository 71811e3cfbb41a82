#pragma once

#include <pybind11/pybind11.h>

namespace dbapi::python {
namespace py = pybind11;

// Each adds its functions and types to the module.

void bind_column_reading(py::module_& module);
void bind_connections(py::module_& module);
void bind_curves(py::module_& module);
void bind_records(py::module_& module);
void bind_explanation(py::module_& module);
void bind_import(py::module_& module);
void bind_write(py::module_& module);
} // namespace dbapi::python
