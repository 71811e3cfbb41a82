#pragma once

#include "dbapi/wall/alldata_command.h"
#include "dbapi/wall/value_conversion.h"
#include "dbapi/words/text_rules.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"

#include <map>
#include <set>
#include <string>

// The steps from a query string to its condition, one call each. The query string has no "ALLDATA:"
// (see alldata_command.h). With `allowBareTerm`, it may be a keyword alone.
//
// No pointer may be null but `errors` of `dbapi_parse_query`, which then writes to the standard
// error stream. `errors` is emptied first and receives the text on failure. Nothing is thrown.

/// Adds the keywords of all terms to `terms`. False, with nothing added, for a syntax error; the
/// text tells the first one. The database is not asked.
bool dbapi_extract_query_terms_impl(
    DBIF_Connection& connection,
    const KTString& query,
    std::set<std::string>* terms,
    KTString* errors,
    bool allowBareTerm);

/// Collects the keywords of the query and makes the preprocessed map (see keyword_map.h) for them,
/// from the keys that records have, superseded ones too; `latestOnly` changes nothing. False for a
/// syntax error, a keyword that breaks the rules, and a database error.
bool dbapi_extract_and_resolve_query_term_keywords(
    DBIF_Connection& connection,
    const std::string& query,
    std::map<std::string, std::set<std::string>>* resolved,
    bool latestOnly,
    KTString* errors);

/// The condition that the query stands for, with its keywords looked up in `resolved`, a
/// preprocessed map; the caller deletes it. Null on failure. `latestOnly` changes nothing.
DBIF_QueryCondition* dbapi_parse_query(
    DBIF_Connection& connection,
    const KTString& query,
    const std::map<std::string, std::set<std::string>>& resolved,
    bool latestOnly,
    KTString* errors,
    bool allowBareTerm);
