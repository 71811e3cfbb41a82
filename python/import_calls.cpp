#include "dbif/host/host_string.h"
#include "dbimport/sweep_files.h"
#include "dbimport/sweep_import.h"

#include "python/bindings.h"
#include "python/library_call.h"
#include "python/python_texts.h"
#include "python/writing_connection.h"

#include <utility>

namespace dbapi::python {
namespace {
py::dict result_dict(const ImportResult& result)
{
    using namespace py::literals;
    py::list superseding;
    for (const SupersedingSweep& sweep : result.superseding) {
        superseding.append(py::make_tuple(text_object(sweep.file), text_object(sweep.device)));
    }
    py::list faults;
    for (const ImportFault& fault : result.faults) {
        faults.append(py::make_tuple(text_object(fault.file), fault.line, text_object(fault.text)));
    }
    return py::dict(
        "files"_a = result.files, "setups"_a = result.setups, "points"_a = result.points,
        "devices"_a = result.devices, "superseded_setups"_a = result.supersededSetups,
        "superseding"_a = superseding, "new_keys"_a = new_key_list(result.newKeys),
        "faults"_a = faults, "fault_count"_a = result.faultCount,
        "faulty_files"_a = result.faultyFiles, "anonymous_files"_a = result.anonymousFiles);
}

/// Tells a callable of bytes, done and in all.
ImportProgress progress_of(const py::object& callable, std::uintmax_t all)
{
    if (callable.is_none()) {
        return nullptr;
    }
    return [&callable, all, done = std::uintmax_t{0}](std::size_t bytes) mutable {
        const py::gil_scoped_acquire interpreter;
        done += bytes;
        try {
            callable(done, all);
        } catch (py::error_already_set& error) {
            // An import goes on to its end; what its progress raised is shown, and not lost.
            error.discard_as_unraisable("the progress of an import");
        }
    };
}

py::dict import_files(
    const py::object& connection,
    const py::sequence& paths,
    bool allowsAnonymous,
    const py::object& progress)
{
    const std::string name = text_of(connection, "The connection");
    const std::vector<std::string> texts = texts_of(paths, "A path");
    ImportResult result;
    call_library(name, [&](std::string*) {
        const SweepFiles found = find_sweep_files(texts);
        if (!found.faults.empty()) {
            std::string text = "Nothing was imported.";
            for (const std::string& fault : found.faults) {
                text += "\n" + fault;
            }
            throw FaultError(argument_fault(text));
        }
        ImportOptions options;
        options.allowsAnonymous = allowsAnonymous;
        result = import_sweeps(
            writing_connection(name), found.files, progress_of(progress, found.bytes), options);
        return true;
    });
    return result_dict(result);
}
} // namespace

py::list new_key_list(const std::vector<dbif::NewKey>& keys)
{
    py::list list;
    for (const dbif::NewKey& key : keys) {
        list.append(py::make_tuple(
            text_object(key.table), text_object(key.name),
            text_object(dbif::to_utf8(dbif::datatype_name(key.kind))), text_object(key.category)));
    }
    return list;
}

void bind_import(py::module_& module)
{
    module.def(
        "import_files", &import_files, py::arg("connection"), py::arg("paths"),
        py::arg("allow_anonymous"), py::arg("progress"));
}
} // namespace dbapi::python
