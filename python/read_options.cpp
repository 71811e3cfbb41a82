#include "python/read_options.h"

#include "dbapi/words/text_rules.h"

#include "python/library_call.h"
#include "python/python_texts.h"

namespace dbapi::python {
namespace {
using Order = ColumnOptions::Order;

Order order_of(const py::object& object)
{
    if (object.is_none()) {
        return Order::None;
    }
    const std::string text = text_of(object, "The order");
    if (text == "sorted") {
        return Order::Sorted;
    }
    if (text == "stored") {
        return Order::Stored;
    }
    raise_fault(argument_fault(
        "The order " + dbapi::quoted(text) +
        R"( is not known. It is "sorted", "stored" or None.)"));
}

/// The number of an `int`; `none` for None.
long long number_of(const py::object& object, const char* what, long long none)
{
    if (object.is_none()) {
        return none;
    }
    if (!PyLong_Check(object.ptr()) && PyIndex_Check(object.ptr()) == 0) {
        throw py::type_error(
            std::string(what) + " is an int or None, not " + Py_TYPE(object.ptr())->tp_name + ".");
    }
    const long long number = PyLong_AsLongLong(py::int_(object).ptr());
    if (number == -1 && PyErr_Occurred() != nullptr) {
        PyErr_Clear();
        raise_fault(argument_fault(std::string(what) + " is larger than any result."));
    }
    if (number < 0) {
        raise_fault(argument_fault(
            std::string(what) + " is " + std::to_string(number) +
            ". It is a number from 0 on, or None for no bound."));
    }
    return number;
}

/// A Python object that may be let go of in any thread.
std::shared_ptr<const py::object> kept(const py::object& object)
{
    return {new py::object(object), [](const py::object* one) {
                const py::gil_scoped_acquire interpreter;
                delete one;
            }};
}

std::function<bool(const ReadProgress&)> progress_of(const py::object& callable)
{
    if (callable.is_none()) {
        return nullptr;
    }
    if (PyCallable_Check(callable.ptr()) == 0) {
        throw py::type_error(
            "The progress is True, or is called with the rows so far and how many there can be.");
    }
    return [call = kept(callable)](const ReadProgress& progress) {
        const py::gil_scoped_acquire interpreter;
        return !(*call)(progress.rows, progress.mostRows).is(py::bool_(false));
    };
}
} // namespace

ColumnOptions column_options(const ReadArguments& arguments)
{
    ColumnOptions options;
    options.order = order_of(arguments.order);
    options.distinct = arguments.distinct;
    options.limit = number_of(arguments.limit, "The limit", -1);
    options.allData = arguments.allData;
    options.withIds = arguments.withIds;
    options.mostBytes =
        static_cast<std::size_t>(number_of(arguments.mostBytes, "The number of bytes", 0));
    options.progress = progress_of(arguments.progress);
    options.interrupted = [check = SignalCheck()]() mutable {
        check();
        return false;
    };
    return options;
}
} // namespace dbapi::python
