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

// The steps from a query string to its condition, one call each.
// `errors` is emptied first; neither pointer nor `errors` may be null, except in
// `dbapi_parse_query`, which writes to the standard error stream when it has no `errors`.

/// Adds the keywords of all terms to `terms`. False at the first syntax error. `allowBareTerm`: the
/// query may be a keyword alone.
bool dbapi_extract_query_terms_impl(
    DBIF_Connection& connection,
    const KTString& query,
    std::set<std::string>* terms,
    KTString* errors,
    bool allowBareTerm);

/// Collects the keywords of the query and builds the preprocessed map (see keyword_map.h) for them,
/// from the keys that records have: all, or the latest.
bool dbapi_extract_and_resolve_query_term_keywords(
    DBIF_Connection& connection,
    const std::string& query,
    std::map<std::string, std::set<std::string>>* resolved,
    bool latestOnly,
    KTString* errors);

/// The condition that the query stands for, with its keywords looked up in `resolved`; the caller
/// owns it. Null on failure.
DBIF_QueryCondition* dbapi_parse_query(
    DBIF_Connection& connection,
    const KTString& query,
    const std::map<std::string, std::set<std::string>>& resolved,
    bool latestOnly,
    KTString* errors,
    bool allowBareTerm);
