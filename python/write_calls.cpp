#include "dbimport/measurement_write.h"

#include "python/bindings.h"
#include "python/column_arrays.h"
#include "python/library_call.h"
#include "python/python_texts.h"
#include "python/writing_connection.h"

#include <complex>
#include <utility>

namespace dbapi::python {
namespace {
using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;
using ComplexNumbers = py::array_t<std::complex<double>, py::array::c_style | py::array::forcecast>;

[[noreturn]] void refuse(const std::string& keyword, const std::string& why)
{
    raise_fault(argument_fault(keyword + ": " + why));
}

/// One dimension of an array, or an error that names the column.
template <typename Value, int Flags>
std::vector<Value> values_of(const py::array_t<Value, Flags>& array, const std::string& keyword)
{
    if (array.ndim() != 1) {
        refuse(
            keyword, "its values have " + std::to_string(array.ndim()) + " dimensions, not one.");
    }
    return {array.data(), array.data() + array.size()};
}

dbif::ComplexMatrix matrix_of(const py::handle object, const std::string& keyword)
{
    dbif::ComplexMatrix matrix;
    if (object.is_none()) {
        return matrix;
    }
    const auto cells = py::cast<ComplexNumbers>(object);
    if (cells.ndim() != 2) {
        refuse(keyword, "a value is no matrix of two dimensions.");
    }
    matrix.rows = static_cast<std::size_t>(cells.shape(0));
    matrix.columns = static_cast<std::size_t>(cells.shape(1));
    matrix.cells.assign(cells.data(), cells.data() + cells.size());
    return matrix;
}

/// `kind` tells which values the objects have; the array of `values` of that kind is filled.
void fill(const py::object& objects, const std::string& keyword, dbif::SweepArray* values)
{
    switch (values->kind) {
    case dbif::ValueKind::Double:
        if (py::array(objects).dtype().kind() == 'c') {
            refuse(keyword, "its values are complex. OUTX and INX are columns of complex numbers.");
        }
        values->numbers = values_of(py::cast<Numbers>(objects), keyword);
        break;
    case dbif::ValueKind::Complex:
        values->complexNumbers = values_of(py::cast<ComplexNumbers>(objects), keyword);
        break;
    case dbif::ValueKind::Matrix:
        for (const py::handle object : objects) {
            values->matrices.push_back(matrix_of(object, keyword));
        }
        break;
    case dbif::ValueKind::Text:
        for (const py::handle object : objects) {
            values->texts.push_back(
                object.is_none() ? std::nullopt : std::optional(text_of(object, "A text")));
        }
        break;
    }
}

dbif::SetupColumn column_of(const py::tuple& given)
{
    const std::string keyword = text_of(given[0], "The keyword of a column");
    dbif::SetupColumn column;
    try {
        column = new_sweep_column(keyword);
    } catch (const FaultError& error) {
        raise_fault(error.fault());
    }
    column.header = text_of(given[2], "The header of a column");
    fill(given[1], keyword, &column.values);
    return column;
}

/// Out of (facts, columns, label): pairs of texts, and triples of keyword, values and header.
NewMeasurement measurement_of(const py::tuple& given)
{
    NewMeasurement measurement;
    for (const py::handle object : given[0]) {
        const auto fact = py::cast<py::tuple>(object);
        measurement.facts.emplace_back(text_of(fact[0], "A keyword"), text_of(fact[1], "A value"));
    }
    for (const py::handle object : given[1]) {
        measurement.sweep.push_back(column_of(py::cast<py::tuple>(object)));
    }
    measurement.label = text_of(given[2], "The label");
    return measurement;
}

py::dict result_dict(const MeasurementWriteResult& result)
{
    using namespace py::literals;
    py::list written;
    for (const WrittenMeasurement& one : result.written) {
        written.append(py::make_tuple(
            result.catalogEntry, one.die, one.device, one.routine, one.measurement, one.condition,
            one.setup));
    }
    py::list superseded;
    for (const dbif::SupersededSetup& one : result.supersededSetups) {
        superseded.append(
            py::make_tuple(one.measurement, one.setup, one.newMeasurement, one.newSetup));
    }
    for (const dbif::SupersedingLink& one : result.supersededMeasurements) {
        superseded.append(py::make_tuple(one.id, 0, one.by, 0));
    }
    return py::dict(
        "written"_a = written, "superseded"_a = superseded,
        "new_keys"_a = new_key_list(result.newKeys));
}

py::dict write(const py::object& connection, const py::sequence& measurements, bool allowsAnonymous)
{
    const std::string name = text_of(connection, "The connection");
    std::vector<NewMeasurement> given;
    for (const py::handle object : measurements) {
        given.push_back(measurement_of(py::cast<py::tuple>(object)));
    }
    MeasurementWriteResult result;
    call_library(name, [&](std::string*) {
        result = write_measurements(writing_connection(name), given, allowsAnonymous);
        return true;
    });
    return result_dict(result);
}
} // namespace

void bind_write(py::module_& module)
{
    module.def(
        "write", &write, py::arg("connection"), py::arg("measurements"),
        py::arg("allow_anonymous"));
}
} // namespace dbapi::python
