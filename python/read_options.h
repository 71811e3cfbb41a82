#pragma once

#include "dbapi/db_columns.h"

#include <memory>
#include <pybind11/pybind11.h>

namespace dbapi::python {
namespace py = pybind11;

/// How a read is asked for from Python; `limit` and `max_bytes` are None or numbers, `progress` is
/// None or callable.
struct ReadArguments
{
    py::object order;
    bool distinct;
    py::object limit;
    bool allData;
    bool withIds;
    py::object mostBytes;
    py::object progress;
};

/// The options of the library for them, with a check for signals. Raises TypeError and
/// `ArgumentError`. The options may end in any thread.
ColumnOptions column_options(const ReadArguments& arguments);
} // namespace dbapi::python
