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
// attribute string (see vocabulary.h). docs/keywords.md describes the forms of keywords.
//
// The keys that count are those of the records that satisfy `condition`, with `flag`, the
// latest-only flag, without superseded ones. Under a null condition all records count, superseded
// ones too. So this asks the database at every call; the calls for values ask it only about
// keywords that several stored keys agree with.
//
// Outputs must not be null, and are empty after a failure: a keyword that breaks the rules, that no
// key or several keys agree with, or a database error. The text goes to `error`, or to the standard
// error stream when that is null. Nothing is thrown.

/// Resolves one keyword. Blanks around it do not count; a blank keyword fails.
bool dbapi_extract_db_names_from_keyword(
    DBIF_Connection& connection,
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error);

/// Replaces the content of `map` by the preprocessed map (see keyword_map.h) of all keys that could
/// be meant by the keywords. Fixed columns that a keyword names stand in it as well. A keyword that
/// no key agrees with is no failure here.
bool dbapi_resolve_set_of_keywords(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    std::map<std::string, std::set<std::string>>* map,
    const DBIF_QueryCondition* condition,
    bool flag,
    std::string* error);
