#include "dbsuggest/query_rewriting.h"

namespace dbapi {
namespace {
void collect_leaves(const QueryNode& node, std::vector<const QueryNode*>* leaves)
{
    if (node.operands.empty()) {
        leaves->push_back(&node);
    }
    for (const auto& operand : node.operands) {
        collect_leaves(*operand, leaves);
    }
}
} // namespace

TermPlace place_of_term(const QueryTree& tree, const QueryNode& term)
{
    const std::size_t at = term.position;
    if (at >= 2 && tree.query.compare(at - 2, 3, "NOT") == 0) {
        return {at - 2, "NO" + term.text};
    }
    return {at, term.text};
}

std::string
with_rewritten_term(const QueryTree& tree, const TermPlace& term, const Rewriting& rewriting)
{
    const bool isWhole = term.text.size() == tree.rest.size();
    std::string query = tree.query;
    query.replace(
        term.position, term.text.size(),
        rewriting.isCompound && !isWhole ? "{" + rewriting.text + "}" : rewriting.text);
    return query;
}

std::vector<const QueryNode*> leaves_of(const QueryTree& tree)
{
    std::vector<const QueryNode*> leaves;
    if (tree.root != nullptr) {
        collect_leaves(*tree.root, &leaves);
    }
    return leaves;
}
} // namespace dbapi
