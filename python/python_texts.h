#pragma once

#include <pybind11/pybind11.h>
#include <string>
#include <string_view>
#include <vector>

// Texts between Python and the library, which takes UTF-8.

namespace dbapi::python {
namespace py = pybind11;

/// A `str`; bytes that are not UTF-8 become U+FFFD.
py::str text_object(std::string_view text);

template <typename Texts>
py::list text_list(const Texts& texts)
{
    py::list list;
    for (const std::string& text : texts) {
        list.append(text_object(text));
    }
    return list;
}

/// The text of a `str`. Raises TypeError for another object, and `ArgumentError` for a text that
/// has no UTF-8; `what` names it, "The query".
std::string text_of(py::handle object, const char* what);

/// The texts of a sequence of `str`; those of a single `str` are itself.
std::vector<std::string> texts_of(const py::sequence& objects, const char* what);
} // namespace dbapi::python
