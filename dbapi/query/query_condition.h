#pragma once

#include "dbapi/key/key_resolution.h"
#include "dbapi/query/query_syntax.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <memory>
#include <set>
#include <string>

// From the tree of a query string to the condition that it stands for: the keywords of all terms
// are resolved in one step, then each term becomes a comparison.

namespace dbapi {
/// The keywords of all terms of a tree, bare ones included.
std::set<std::string> keywords_of(const QueryNode& tree);

/// Resolves these, from the definitions of keys (see `resolve_keywords`). Throws `FaultError`, with
/// the place in the query, for a syntax error and for a keyword that breaks the rules, and
/// `DBIF_Exception` on a database error.
Resolutions resolve_terms(DBIF_Connection& connection, const QueryTree& tree);

/// The condition of a node of the tree `tree`. `resolutions` has an entry for each of its keywords.
/// Throws `FaultError`, with the place in the query, for the first fault from the left.
std::unique_ptr<DBIF_QueryCondition>
condition_of(const QueryTree& tree, const QueryNode& node, const Resolutions& resolutions);

/// The message for a column that the words of a keyword name and that its table does not have.
std::string no_column_text(const std::string& table, const std::string& name);

/// A condition, and whether superseded records do not count.
struct QueryCondition
{
    std::unique_ptr<DBIF_QueryCondition> condition;
    bool latestOnly = true;
};

/// The condition that a query string stands for; an empty one selects everything. Throws
/// `FaultError` with the whole message.
QueryCondition build_condition(DBIF_Connection& connection, const QueryTree& tree);
QueryCondition build_condition(DBIF_Connection& connection, const std::string& query);
} // namespace dbapi
