#pragma once

#include "dbexplain/explanation.h"
#include "dbsuggest/data_request.h"

namespace dbapi {
/// Runs a read on a stored connection and tells how it was understood and what it did: the tree of
/// the query with what each part keeps, the keys that the keywords stand for and why, the
/// statements with the engine's plans and times, and, where nothing is found, which part leaves
/// nothing. Without keywords, the query alone is explained.
///
/// Throws `FaultError` for what a call for the values would fail with, and `DBIF_Exception` on a
/// database error while the parts are counted.
Explanation explain(const DataRequest& request);
} // namespace dbapi
