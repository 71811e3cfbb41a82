#pragma once

#include "dbapi/db_columns.h"
#include "dbsuggest/data_request.h"

#include "tools/dbapi/output/data_output.h"

namespace dbapi::tool {
/// Reads the values of the request's keywords and writes them, with the notes on its query before
/// them; returns the number of rows. Rows in stored order are written as they are read, so that
/// memory does not grow with their number, unless the format needs them all. Throws
/// `CommandFailure`.
std::size_t
write_values(const DataRequest& request, const ColumnOptions& order, const OutputOptions& output);
} // namespace dbapi::tool
