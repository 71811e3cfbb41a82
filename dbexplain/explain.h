#pragma once

#include "dbexplain/explanation.h"
#include "dbsuggest/data_request.h"

namespace dbapi {
/// Runs a read on a stored connection and tells how it was understood and what it did: the tree of
/// the query with what each part selects, the keys that the keywords stand for and why, the
/// statements with the engine's plans and times, and, where nothing is found, which part of the
/// query is to blame.
///
/// The request is that of a call for values: a connection's name, any number of keywords and a
/// query string, in UTF-8. Without keywords, the query alone is explained: the read then gives the
/// ids of the lowest table that the query compares. An empty query selects everything.
///
/// The read is the very one that `db_get_values_for_keywords` makes, on the connection that the
/// library keeps open. After it, each part of the query is counted by a statement of its own (up to
/// a hundred parts), so an explanation takes several times as long as the read. Nothing is written.
///
/// The result is plain data that belongs to the caller. Texts in it that come from the database or
/// the request stand as they are, and may hold control characters.
///
/// Throws `FaultError` for what a call for the values would fail with (`Fault` has the place in the
/// query or keyword), and `DBIF_Exception` on a database error while the parts are counted. Call it
/// in the thread in which the process makes its other data calls.
Explanation explain(const DataRequest& request);
} // namespace dbapi
