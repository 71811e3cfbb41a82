#include "dbexplain/query_explanation.h"

#include "dbapi/query/query_condition.h"
#include "dbexplain/term_text.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/connection/traced_connection.h"
#include "dbif/host/host_string.h"
#include "dbif/retrieval/query_run.h"

#include <algorithm>

namespace dbapi {
namespace {
using Kind = QueryNode::Kind;

/// Each node that is counted is a query of its own.
constexpr std::size_t kMostCounted = 100;

class TreeExplainer
{
public:
    TreeExplainer(
        const QueryTree& tree,
        const Resolutions& resolutions,
        const std::vector<KeyExplanation>& keys)
        : tree_(tree), resolutions_(resolutions), keys_(keys)
    {}

    [[nodiscard]] NodeExplanation explain(const QueryNode& node) const
    {
        NodeExplanation explained;
        explained.kind = node.kind;
        explained.written = node.text;
        explained.keyword = node.keyword;
        explained.value = node.value;
        for (const auto& operand : node.operands) {
            explained.operands.push_back(explain(*operand));
        }
        explained.condition = condition_of(tree_, node, resolutions_);
        explained.isOnPoints = dbif::is_decided_on_points(explained.condition.get());
        explained.text = textOf(node);
        return explained;
    }

private:
    [[nodiscard]] std::string textOf(const QueryNode& node) const
    {
        switch (node.kind) {
        case Kind::And:
            return "AND";
        case Kind::Or:
            return "OR";
        case Kind::Not:
            return "NOT";
        case Kind::BareTerm:
            return "{" + node.keyword + "}";
        case Kind::Term:
            return term_text(node, holdsNumbers(node.keyword));
        default:
            return "{}";
        }
    }

    [[nodiscard]] bool holdsNumbers(const std::string& keyword) const
    {
        const auto found =
            std::find_if(keys_.begin(), keys_.end(), [&keyword](const KeyExplanation& key) {
                return key.keyword == keyword;
            });
        return found != keys_.end() && found->isNumber();
    }

    const QueryTree& tree_;
    const Resolutions& resolutions_;
    const std::vector<KeyExplanation>& keys_;
};

std::size_t count_nodes(const NodeExplanation& tree)
{
    std::size_t count = 1;
    for (const NodeExplanation& operand : tree.operands) {
        count += count_nodes(operand);
    }
    return count;
}
} // namespace

NodeExplanation explain_tree(
    DBIF_Connection& connection,
    const QueryTree& tree,
    const std::vector<KeyExplanation>& keys)
{
    const Resolutions resolutions = resolve_terms(connection, tree);
    return TreeExplainer(tree, resolutions, keys).explain(*tree.root);
}

KeptCount RecordCounter::count(const DBIF_QueryCondition* condition)
{
    dbif::ReadTrace trace(dbif::ReadTrace::Plans::Leave);
    const dbif::TracedConnection traced(connection_, &trace);
    KeptCount kept;
    kept.records = dbif::matching_ids(connection_, table_, condition, latestOnly_).size();
    if (trace.pointDecisions() > 0) {
        kept.points = trace.points().keptPoints;
    }
    return kept;
}

void RecordCounter::countTree(NodeExplanation* tree)
{
    if (count_nodes(*tree) > kMostCounted) {
        tree->alone = count(tree->condition.get());
    } else {
        countNode(tree);
    }
}

void RecordCounter::countNode(NodeExplanation* node)
{
    for (NodeExplanation& operand : node->operands) {
        countNode(&operand);
    }
    if (node->kind == Kind::And) {
        countAnd(node);
    } else {
        node->alone = count(node->condition.get());
    }
}

void RecordCounter::countAnd(NodeExplanation* node)
{
    std::shared_ptr<const DBIF_QueryCondition> all;
    for (NodeExplanation& operand : node->operands) {
        all = all == nullptr ? operand.condition : both(all.get(), operand.condition.get());
        const bool isFirst = &operand == &node->operands.front();
        operand.soFar = isFirst ? operand.alone : count(all.get());
    }
    node->alone = node->operands.back().soFar;
}

std::shared_ptr<const DBIF_QueryCondition>
both(const DBIF_QueryCondition* first, const DBIF_QueryCondition* second)
{
    return std::make_shared<DBIF_CompoundQueryCondition>(first, AND, second);
}
} // namespace dbapi
