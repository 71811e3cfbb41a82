#pragma once

#include <pybind11/pybind11.h>

namespace dbapi::python {
namespace py = pybind11;

/// The metaclass of all types of the module: Python's own, as their stubs say.
inline py::metaclass plain_metaclass()
{
    return py::metaclass(reinterpret_cast<PyObject*>(&PyType_Type));
}

// Each adds its functions and types to the module.

void bind_column_reading(py::module_& module);
void bind_connections(py::module_& module);
void bind_curves(py::module_& module);
void bind_records(py::module_& module);
void bind_explanation(py::module_& module);
void bind_import(py::module_& module);
void bind_write(py::module_& module);
} // namespace dbapi::python
