#include "dbexplain/explain.h"
#include "dbexplain/explanation_json.h"
#include "dbexplain/explanation_text.h"

#include "python/bindings.h"
#include "python/library_call.h"
#include "python/python_texts.h"

namespace dbapi::python {
namespace {
/// Lines as long as in files.
constexpr std::size_t kWidth = 100;

/// The explanation for people, and as JSON.
py::tuple
explanation(const py::object& connection, const py::sequence& keywords, const py::object& query)
{
    DataRequest request;
    request.connection = text_of(connection, "The connection");
    request.keywords = texts_of(keywords, "A keyword");
    request.query = text_of(query, "The query");
    std::string text;
    std::string json;
    call_library(request.connection, [&](std::string*) {
        const Explanation found = explain(request);
        text = explanation_text(found, kWidth, false);
        json = explanation_json(found);
        return true;
    });
    return py::make_tuple(text_object(text), text_object(json));
}
} // namespace

void bind_explanation(py::module_& module)
{
    module.def(
        "explanation", &explanation, py::arg("connection"), py::arg("keywords"), py::arg("query"));
}
} // namespace dbapi::python
