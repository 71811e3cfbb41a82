#pragma once

#include "dbapi/key/key_resolution.h"
#include "dbapi/query/query_syntax.h"
#include "dbif/connection/connection.h"

#include <map>
#include <set>
#include <string>

// Resolution by the preprocessed map that a host hands in (see keyword_map.h).

namespace dbapi {
/// The one key of the map that agrees with the keyword. Its column is not looked up: only the words
/// are known.
Resolution
resolve_by_map(const std::string& keyword, const std::map<std::string, std::set<std::string>>& map);

/// The same for all keywords of a query's tree, with their columns. Throws `DBIF_Exception` on a
/// database error.
Resolutions resolve_terms_by_map(
    DBIF_Connection& connection,
    const QueryNode& tree,
    const std::map<std::string, std::set<std::string>>& map);
} // namespace dbapi
