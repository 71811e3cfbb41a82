#pragma once

#include <pybind11/pybind11.h>
#include <string>
#include <string_view>

// Texts of the library, which are UTF-8, for Python.

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
} // namespace dbapi::python
