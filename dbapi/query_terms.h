#pragma once

#include <set>
#include <string>

namespace dbapi {
struct QueryNode;

/// Collects the keywords of all terms of a tree, bare ones included, in place of the content of
/// `keywords`. False at the first syntax error from the left: `error` then holds its message and
/// `keywords` nothing. Neither may be null.
bool collect_term_keywords(
    const QueryNode& tree,
    std::set<std::string>* keywords,
    std::string* error);

/// The first syntax error from the left; null when the tree has none. It lives as long as the tree.
const QueryNode* find_syntax_error(const QueryNode& tree);
} // namespace dbapi
