#include "dbapi/query_terms.h"

#include "dbapi/query/query_syntax.h"

namespace dbapi {
namespace {
/// Puts the keywords below a node into `keywords`, up to the first error, which it returns.
const QueryNode* collect(const QueryNode& node, std::set<std::string>* keywords)
{
    switch (node.kind) {
    case QueryNode::Kind::Error:
        return &node;
    case QueryNode::Kind::Term:
    case QueryNode::Kind::BareTerm:
        keywords->insert(node.keyword);
        return nullptr;
    default:
        break;
    }
    for (const auto& operand : node.operands) {
        if (const QueryNode* error = collect(*operand, keywords)) {
            return error;
        }
    }
    return nullptr;
}
} // namespace

bool collect_term_keywords(
    const QueryNode& tree,
    std::set<std::string>* keywords,
    std::string* error)
{
    keywords->clear();
    error->clear();
    std::set<std::string> collected;
    if (const QueryNode* found = collect(tree, &collected)) {
        *error = found->error;
        return false;
    }
    *keywords = std::move(collected);
    return true;
}

const QueryNode* find_syntax_error(const QueryNode& tree)
{
    std::set<std::string> ignored;
    return collect(tree, &ignored);
}
} // namespace dbapi
