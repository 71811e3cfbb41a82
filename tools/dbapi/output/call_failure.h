#pragma once

#include "dbapi/words/fault.h"
#include "dbsuggest/data_request.h"

#include <string>

namespace dbapi::tool {
/// Throws the `CommandFailure` for a library call that failed with the error text `errors`, which
/// may be empty: the library's text, and where in the query or keyword the fault is.
[[noreturn]] void throw_call_failure(const DataRequest& request, const std::string& errors);
/// The same for a fault that was caught.
[[noreturn]] void throw_call_failure(const DataRequest& request, const Fault& fault);
} // namespace dbapi::tool
