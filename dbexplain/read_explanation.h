#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"
#include "dbsuggest/data_request.h"

#include <string>

namespace dbapi {
/// Runs the read of a request (without keywords, that of the ids of `table`) and notes what it did.
/// `connection` is the one that the library keeps open. Throws `FaultError` when the read fails.
void explain_read(
    const DBIF_Connection& connection,
    const DataRequest& request,
    dbif::RecordTable table,
    ReadExplanation* explanation);
} // namespace dbapi
