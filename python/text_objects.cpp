#include "python/text_objects.h"

namespace dbapi::python {
py::str text_object(std::string_view text)
{
    PyObject* object =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
    if (object == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::str>(object);
}
} // namespace dbapi::python
