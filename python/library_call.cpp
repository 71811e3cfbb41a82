#include "python/library_call.h"

#include "dbapi/call/selection.h"
#include "dbapi/db_fault.h"
#include "dbapi/words/database_fault.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/fault_advice.h"
#include "dbsuggest/fault_lines.h"
#include "dbsuggest/known_keys.h"

#include "python/text_objects.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <thread>

namespace dbapi::python {
namespace {
constexpr std::chrono::milliseconds kBetweenChecks{50};

/// The library's lock, and the thread that has it.
struct Library
{
    std::timed_mutex mutex;
    std::atomic<std::thread::id> owner;
};

Library& library()
{
    static Library one;
    return one;
}

const char* exception_name(Fault::Kind kind)
{
    switch (kind) {
    case Fault::Kind::Argument:
        return "ArgumentError";
    case Fault::Kind::Connection:
        return "OperationalError";
    case Fault::Kind::Cancelled:
        return "Cancelled";
    case Fault::Kind::Memory:
        return "OutOfMemory";
    case Fault::Kind::Database:
        return "DataError";
    default:
        return "QueryError";
    }
}

/// The text without the word that says it is an error, which the exception's name does.
std::string message_of(const Failure& failure)
{
    std::string text = dbif::trimmed(failure.fault.text);
    for (std::size_t end = text.find(" \n"); end != std::string::npos; end = text.find(" \n")) {
        text.erase(end, 1);
    }
    constexpr std::string_view kWord = "Error: ";
    if (text.starts_with(kWord)) {
        text.erase(0, kWord.size());
    }
    if (text.empty()) {
        text = "The call failed without a word: check its keywords.";
    }
    return failure.lines.empty() ? text : text + "\n" + failure.lines;
}

/// The number of characters before a byte of a text.
std::size_t characters_before(const std::string& text, std::size_t byte)
{
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte, text.size()));
    return static_cast<std::size_t>(std::count_if(text.begin(), end, [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}
} // namespace

void run_signal_handlers()
{
    const py::gil_scoped_acquire interpreter;
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
}

void SignalCheck::operator()()
{
    const auto now = std::chrono::steady_clock::now();
    if (now >= next_) {
        next_ = now + kBetweenChecks;
        run_signal_handlers();
    }
}

LibraryLock::LibraryLock()
{
    if (library().owner == std::this_thread::get_id()) {
        raise_fault(connection_fault(
            "The library is in the middle of a call of this thread, whose callback cannot make "
            "another one. Let the callback note what it wants, and do it after the call."));
    }
    withoutInterpreter_.emplace();
    while (!library().mutex.try_lock_for(kBetweenChecks)) {
        run_signal_handlers();
    }
    library().owner = std::this_thread::get_id();
}

LibraryLock::~LibraryLock()
{
    library().owner = std::thread::id();
    library().mutex.unlock();
}

Failure failure_of_last_call(const std::string& connection, const std::string& errors)
{
    Failure failure;
    if (!db_get_last_fault(&failure.fault)) {
        failure.fault.text = errors;
    }
    if (failure.fault.where == Fault::Where::Nowhere) {
        return failure;
    }
    std::vector<Advice> advice;
    try {
        advice = advice_for(failure.fault, KnownKeys(connection_for_call(connection)));
    } catch (const std::exception&) {
        // The fault itself is known; what was meant stays open where the database cannot be asked.
        advice.clear();
    }
    failure.lines = fault_lines(failure.fault, advice);
    for (const Advice& one : advice) {
        if (!one.corrected.empty()) {
            failure.suggestions.push_back(one.corrected);
        }
    }
    return failure;
}

void raise_failure(const Failure& failure)
{
    const Fault& fault = failure.fault;
    const py::object type = py::module_::import("dbapi._errors").attr(exception_name(fault.kind));
    py::object exception = type(text_object(message_of(failure)));
    if (fault.where != Fault::Where::Nowhere) {
        const std::size_t position = characters_before(fault.source, fault.position);
        exception.attr("text") = text_object(fault.source);
        exception.attr("position") = position;
        exception.attr("length") =
            characters_before(fault.source, fault.position + fault.length) - position;
        exception.attr("suggestions") = py::tuple(text_list(failure.suggestions));
    }
    PyErr_SetObject(type.ptr(), exception.ptr());
    throw py::error_already_set();
}

void raise_fault(const Fault& fault)
{
    raise_failure({fault, {}, {}});
}

Fault fault_of_exception(const std::exception& exception)
{
    if (const auto* error = dynamic_cast<const FaultError*>(&exception)) {
        return error->fault();
    }
    if (const auto* error = dynamic_cast<const DBIF_Exception*>(&exception)) {
        return database_fault(*error);
    }
    Fault fault;
    fault.text = exception.what();
    if (dynamic_cast<const std::bad_alloc*>(&exception) != nullptr) {
        fault.kind = Fault::Kind::Memory;
        fault.text =
            "There is not enough memory for the result. Select less, or read it in batches.";
    }
    return fault;
}
} // namespace dbapi::python
