#pragma once

#include "python/text_objects.h"

#include <pybind11/pybind11.h>
#include <string>
#include <vector>

// Texts of Python for the library, which takes UTF-8.

namespace dbapi::python {
namespace py = pybind11;

/// The text of a `str`. Raises TypeError for another object, and `ArgumentError` for a text that
/// has no UTF-8; `what` names it, "The query".
std::string text_of(py::handle object, const char* what);

/// The texts of a sequence of `str`; those of a single `str` are itself.
std::vector<std::string> texts_of(const py::sequence& objects, const char* what);
} // namespace dbapi::python
