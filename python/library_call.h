#pragma once

#include "dbapi/words/fault.h"

#include <chrono>
#include <optional>
#include <pybind11/pybind11.h>
#include <string>
#include <vector>

// What every call from Python into the library goes through: its lock, Ctrl-C, and how it fails.

namespace dbapi::python {
namespace py = pybind11;

/// Runs the handlers of signals that came in. Throws what they raise, such as KeyboardInterrupt.
/// May be called with and without the interpreter's lock.
void run_signal_handlers();

/// The same, at most every 50 ms: reading must not wait for the interpreter's lock again and again.
class SignalCheck
{
public:
    void operator()();

private:
    std::chrono::steady_clock::time_point next_;
};

/// While it lives, this thread has the library, which is used by one thread at a time, and not the
/// interpreter's lock. The latter is always given back first, so that a thread that holds the
/// library may take it for a callback. Waiting for another thread ends with Ctrl-C. Throws
/// `OperationalError` when this thread has the library already, as within a callback of a read.
class LibraryLock
{
public:
    LibraryLock();
    LibraryLock(const LibraryLock&) = delete;
    LibraryLock& operator=(const LibraryLock&) = delete;
    ~LibraryLock();

private:
    class Ownership;
    std::optional<py::gil_scoped_release> withoutInterpreter_;
};

/// A failed call, as Python is told of it.
struct Failure
{
    Fault fault;
    /// The place in the query or keyword and what was probably meant, for people.
    std::string lines;
    /// What to write instead of the whole query or keyword.
    std::vector<std::string> suggestions;
};

/// Why the call that just failed on a connection did so; asks its database for what was meant.
/// Called while this thread has the library.
Failure failure_of_last_call(const std::string& connection, const std::string& errors);

/// Raises the exception for a failure. Called with the interpreter's lock.
[[noreturn]] void raise_failure(const Failure& failure);

/// Raises for a fault without a place.
[[noreturn]] void raise_fault(const Fault& fault);

/// The fault of an exception: of the database, of one that carries a fault, of too little memory.
Fault fault_of_exception(const std::exception& exception);

/// Makes a call on a connection: `run` is given the text to be filled on failure, and returns
/// whether it succeeded. What fails is raised.
template <typename Run>
void call_library(const std::string& connection, const Run& run)
{
    std::optional<Failure> failure;
    {
        const LibraryLock lock;
        std::string errors;
        try {
            if (!run(&errors)) {
                failure = failure_of_last_call(connection, errors);
            }
        } catch (const py::builtin_exception&) {
            throw;
        } catch (const py::error_already_set&) {
            throw;
        } catch (const std::exception& exception) {
            failure = Failure{fault_of_exception(exception), {}, {}};
        }
    }
    if (failure.has_value()) {
        raise_failure(*failure);
    }
}
} // namespace dbapi::python
