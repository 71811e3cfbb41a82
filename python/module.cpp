#include "python/arrow_capsules.h"
#include "python/bindings.h"
#include "python/column_arrays.h"

PYBIND11_MODULE(_core, module)
{
    module.doc() = "The library behind the package dbapi, which is what programs use.";
    dbapi::python::bind_columns(module);
    dbapi::python::bind_arrow(module);
    dbapi::python::bind_column_reading(module);
    dbapi::python::bind_connections(module);
    dbapi::python::bind_curves(module);
    dbapi::python::bind_records(module);
    dbapi::python::bind_explanation(module);
    dbapi::python::bind_import(module);
    dbapi::python::bind_write(module);
}
