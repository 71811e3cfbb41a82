#include "python/python_texts.h"

#include "dbapi/words/fault.h"

#include "python/library_call.h"

namespace dbapi::python {
std::string text_of(py::handle object, const char* what)
{
    if (!PyUnicode_Check(object.ptr())) {
        throw py::type_error(
            std::string(what) + " is a str, not " + Py_TYPE(object.ptr())->tp_name + ".");
    }
    Py_ssize_t length = 0;
    const char* text = PyUnicode_AsUTF8AndSize(object.ptr(), &length);
    if (text == nullptr) {
        PyErr_Clear();
        raise_fault(argument_fault(
            std::string(what) + " has characters that are no Unicode text (surrogates)."));
    }
    return {text, static_cast<std::size_t>(length)};
}

std::vector<std::string> texts_of(const py::sequence& objects, const char* what)
{
    if (PyUnicode_Check(objects.ptr())) {
        return {text_of(objects, what)};
    }
    std::vector<std::string> texts;
    texts.reserve(objects.size());
    for (const py::handle object : objects) {
        texts.push_back(text_of(object, what));
    }
    return texts;
}
} // namespace dbapi::python
