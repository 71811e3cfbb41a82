#pragma once

#include "dbif/connection/connection.h"
#include "dbif/write/record_values.h"

#include <pybind11/pybind11.h>
#include <string>
#include <vector>

// What the calls that write share.

namespace dbapi::python {
namespace py = pybind11;

/// The database of a stored connection, or the file of a path, open for writing. Throws
/// `FaultError`. Called while this thread has the library.
DBIF_Connection writing_connection(const std::string& name);

/// New keys, each as (table, name, data type, category).
py::list new_key_list(const std::vector<dbif::NewKey>& keys);
} // namespace dbapi::python
