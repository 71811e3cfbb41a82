#include "python/arrow_capsules.h"

#include "dbapi/db_arrow.h"

#include "python/column_arrays.h"

#include <utility>
#include <vector>

namespace dbapi::python {
namespace {
constexpr const char* kStream = "arrow_array_stream";

void release_unused(PyObject* capsule)
{
    auto* stream = static_cast<ArrowArrayStream*>(PyCapsule_GetPointer(capsule, kStream));
    if (stream->release != nullptr) {
        stream->release(stream);
    }
    delete stream;
}

/// The capsule around a stream that is not exported yet, and the stream.
std::pair<py::capsule, ArrowArrayStream*> empty_capsule()
{
    auto stream = std::make_unique<ArrowArrayStream>();
    *stream = {};
    PyObject* capsule = PyCapsule_New(stream.get(), kStream, &release_unused);
    if (capsule == nullptr) {
        throw py::error_already_set();
    }
    return {py::reinterpret_steal<py::capsule>(capsule), stream.release()};
}

py::capsule table_stream(const py::sequence& columns, std::size_t rows)
{
    SharedColumns shared;
    for (const py::handle column : columns) {
        shared.push_back(py::cast<std::shared_ptr<ValueColumn>>(column));
    }
    auto [capsule, stream] = empty_capsule();
    db_export_arrow_columns(std::move(shared), rows, stream);
    return std::move(capsule);
}
} // namespace

py::capsule stream_capsule(std::unique_ptr<ColumnReader> reader)
{
    auto [capsule, stream] = empty_capsule();
    db_export_arrow_stream(std::move(reader), stream);
    return std::move(capsule);
}

void bind_arrow(py::module_& module)
{
    module.def(
        "table_stream", &table_stream, py::arg("columns"), py::arg("rows"),
        "A capsule of an Arrow stream of one batch, which shares the columns.");
}
} // namespace dbapi::python
