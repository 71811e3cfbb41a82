#pragma once

#include "dbapi/query/query_syntax.h"
#include "dbsuggest/rewriting.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// A term of a query as its writer meant it: with the NOT in front, whose T the grammar counts to
/// the keyword. In bytes of the query string.
struct TermPlace
{
    std::size_t position = 0;
    std::string text;
};

TermPlace place_of_term(const QueryTree& tree, const QueryNode& term);

/// The query string with the term rewritten, in braces where it needs them.
std::string
with_rewritten_term(const QueryTree& tree, const TermPlace& term, const Rewriting& rewriting);

/// The leaves of a tree, from left to right. They live as long as the tree.
std::vector<const QueryNode*> leaves_of(const QueryTree& tree);
} // namespace dbapi
