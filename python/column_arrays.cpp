#include "python/column_arrays.h"

#include "python/bindings.h"
#include "python/python_texts.h"

#include <algorithm>
#include <limits>

namespace dbapi::python {
namespace {
using Type = ValueColumn::Type;

const char* name_of(Type type)
{
    switch (type) {
    case Type::Number:
        return "number";
    case Type::Integer:
        return "integer";
    case Type::Complex:
        return "complex";
    case Type::Matrix:
        return "matrix";
    case Type::Text:
        return "text";
    case Type::Time:
        break;
    }
    return "time";
}

void make_read_only(const py::array& array)
{
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
}

/// An array of objects, of which `object(row)` gives one for each row, as a new reference.
template <typename Object>
py::array object_array(std::size_t rows, const Object& object)
{
    py::array array(py::dtype("O"), std::vector<py::ssize_t>{static_cast<py::ssize_t>(rows)});
    // NumPy fills a new array of objects with null pointers, which stand for None.
    auto** cells = static_cast<PyObject**>(array.mutable_data());
    for (std::size_t row = 0; row < rows; ++row) {
        PyObject* old = cells[row];
        cells[row] = object(row);
        Py_XDECREF(old);
    }
    make_read_only(array);
    return array;
}

PyObject* new_reference(py::handle object)
{
    return object.inc_ref().ptr();
}

py::list dictionary_of(const ValueColumn& column)
{
    return text_list(column.dictionary);
}

/// Each text is one object, however many rows have it.
py::array text_array(const ValueColumn& column)
{
    const py::list texts = dictionary_of(column);
    return object_array(column.codes.size(), [&](std::size_t row) {
        const std::int32_t code = column.codes[row];
        return code == ValueColumn::kNoText
                   ? new_reference(py::none())
                   : new_reference(PyList_GET_ITEM(texts.ptr(), static_cast<py::ssize_t>(code)));
    });
}

/// Whole numbers stay such where no row lacks one; otherwise NumPy knows NaN only as a double.
py::array integer_array(const SharedColumn& column, std::size_t missing)
{
    const std::vector<std::int64_t>& integers = column->integers;
    if (missing == 0) {
        return array_over(
            py::dtype::of<std::int64_t>(), integers.size(), integers.data(), owner_of(column));
    }
    const auto numbers = std::make_shared<std::vector<double>>(integers.size());
    std::transform(integers.begin(), integers.end(), numbers->begin(), [](std::int64_t integer) {
        return integer == ValueColumn::kNoInteger ? std::numeric_limits<double>::quiet_NaN()
                                                  : static_cast<double>(integer);
    });
    return array_over(py::dtype::of<double>(), numbers->size(), numbers->data(), owner_of(numbers));
}

/// The one shape of all matrices that are there; null where they differ, or there is none.
const dbif::ComplexMatrix* common_shape(const std::vector<dbif::ComplexMatrix>& matrices)
{
    const dbif::ComplexMatrix* first = nullptr;
    for (const dbif::ComplexMatrix& matrix : matrices) {
        if (matrix.rows == 0) {
            continue;
        }
        if (first == nullptr) {
            first = &matrix;
        } else if (matrix.rows != first->rows || matrix.columns != first->columns) {
            return nullptr;
        }
    }
    return first;
}

py::array matrix_array(const SharedColumn& column)
{
    using Number = std::complex<double>;
    const std::vector<dbif::ComplexMatrix>& matrices = column->matrices;
    const dbif::ComplexMatrix* shape = common_shape(matrices);
    const auto extent = [](std::size_t size) {
        return static_cast<py::ssize_t>(size);
    };
    if (shape == nullptr) {
        const py::capsule owner = owner_of(column);
        return object_array(matrices.size(), [&](std::size_t row) {
            const dbif::ComplexMatrix& matrix = matrices[row];
            if (matrix.rows == 0) {
                return new_reference(py::none());
            }
            const py::array cells = array_over(
                py::dtype::of<Number>(), matrix.cells.size(), matrix.cells.data(), owner);
            return py::array(cells)
                .attr("reshape")(extent(matrix.rows), extent(matrix.columns))
                .release()
                .ptr();
        });
    }
    const std::size_t size = shape->cells.size();
    py::array_t<Number> array(
        {extent(matrices.size()), extent(shape->rows), extent(shape->columns)});
    Number* cells = array.mutable_data();
    for (std::size_t row = 0; row < matrices.size(); ++row) {
        if (matrices[row].rows == 0) {
            std::fill_n(cells + row * size, size, dbif::kNoComplex);
        } else {
            std::copy_n(matrices[row].cells.data(), size, cells + row * size);
        }
    }
    make_read_only(array);
    return array;
}

py::array array_of(const SharedColumn& column)
{
    switch (column->type) {
    case Type::Number:
        return array_over(
            py::dtype::of<double>(), column->numbers.size(), column->numbers.data(),
            owner_of(column));
    case Type::Integer:
        return integer_array(column, column->missing());
    case Type::Complex:
        return array_over(
            py::dtype::of<std::complex<double>>(), column->complexNumbers.size(),
            column->complexNumbers.data(), owner_of(column));
    case Type::Matrix:
        return matrix_array(column);
    case Type::Text:
        return text_array(*column);
    case Type::Time:
        break;
    }
    return array_over(
        py::dtype("M8[us]"), column->integers.size(), column->integers.data(), owner_of(column));
}

/// The memory itself of ids, times and texts: NumPy's arrays of integers.
py::array raw_array(const SharedColumn& column)
{
    if (column->type == Type::Text) {
        return array_over(
            py::dtype::of<std::int32_t>(), column->codes.size(), column->codes.data(),
            owner_of(column));
    }
    return array_over(
        py::dtype::of<std::int64_t>(), column->integers.size(), column->integers.data(),
        owner_of(column));
}
} // namespace

py::array array_over(const py::dtype& type, std::size_t size, const void* data, py::handle owner)
{
    py::array array(
        type, std::vector<py::ssize_t>{static_cast<py::ssize_t>(size)}, {}, data, owner);
    make_read_only(array);
    return array;
}

std::vector<SharedColumn> shared_columns(ColumnTable* table)
{
    std::vector<SharedColumn> columns;
    columns.reserve(table->columns.size());
    for (ValueColumn& column : table->columns) {
        columns.push_back(std::make_shared<const ValueColumn>(std::move(column)));
    }
    return columns;
}

py::list column_list(ColumnTable* table)
{
    py::list list;
    for (SharedColumn& column : shared_columns(table)) {
        list.append(py::cast(std::const_pointer_cast<ValueColumn>(column)));
    }
    return list;
}

void bind_columns(py::module_& module)
{
    py::class_<ValueColumn, std::shared_ptr<ValueColumn>> type(
        module, "Column", "One column of a result: its values, and what its keyword stands for.",
        plain_metaclass());
    const auto add_text = [&type](const char* name, std::string ValueColumn::*member) {
        type.def_property_readonly(
            name, [member](const ValueColumn& column) { return text_object(column.*member); });
    };
    add_text("keyword", &ValueColumn::keyword);
    add_text("name", &ValueColumn::name);
    add_text("table", &ValueColumn::table);
    add_text("category", &ValueColumn::category);
    add_text("datatype", &ValueColumn::dataType);
    add_text("unit", &ValueColumn::unit);
    type.def_property_readonly(
        "kind", [](const ValueColumn& column) { return name_of(column.type); });
    type.def_property_readonly(
        "missing", [](const ValueColumn& column) { return column.missing(); });
    type.def("__len__", &ValueColumn::size);
    type.def("array", [](const std::shared_ptr<ValueColumn>& column) { return array_of(column); });
    type.def("raw", [](const std::shared_ptr<ValueColumn>& column) { return raw_array(column); });
    type.def("dictionary", &dictionary_of);
}
} // namespace dbapi::python
