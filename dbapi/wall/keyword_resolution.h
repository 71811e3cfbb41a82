#pragma once

#include "dbapi/wall/keyword_map.h"
#include "dbapi/wall/keyword_match.h"
#include "dbapi/wall/keyword_resolution_stages.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <map>
#include <set>
#include <string>

// Resolution turns a keyword into the one database key that it denotes: key name, table name and
// attribute string (see vocabulary.h). Outputs stay empty on failure; the error text goes to
// `error`, or to the standard error stream when that is null.

/// Resolves one keyword against the catalogue of the keys that the records have which satisfy
/// `condition` (none: all records). `flag` is the latest-only flag.
bool dbapi_extract_db_names_from_keyword(
    DBIF_Connection& connection,
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error);

/// Builds the preprocessed map (see keyword_map.h) of all keys that could be meant by the keywords,
/// from that catalogue.
bool dbapi_resolve_set_of_keywords(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    std::map<std::string, std::set<std::string>>* map,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error);
