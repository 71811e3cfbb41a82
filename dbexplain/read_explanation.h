#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"
#include "dbsuggest/data_request.h"

#include <string>

namespace dbapi::tool {
/// Runs the read of a request, as `dbapi values` does (without keywords, as `dbapi ids` of `table`
/// does), and tells what it did. `connection` is the one that the library keeps open. False, with
/// the library's error text, when the read fails.
bool explain_read(
    const DBIF_Connection& connection,
    const DataRequest& request,
    dbif::RecordTable table,
    ReadExplanation* explanation,
    std::string* errors);
} // namespace dbapi::tool
