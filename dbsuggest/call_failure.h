#pragma once

#include "dbsuggest/data_request.h"

#include <string>

namespace dbapi::tool {
/// Throws the `CommandFailure` for a library call that failed with the error text `errors`, which
/// may be empty: the library's text, and where in the query or keyword the fault is.
[[noreturn]] void throw_call_failure(const DataRequest& request, const std::string& errors);
} // namespace dbapi::tool
