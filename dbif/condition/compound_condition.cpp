#include "dbif/condition/compound_condition.h"

#include "dbif/condition/condition_tree.h"
#include "dbif/host/exception.h"

using dbif::ConditionTree;

namespace {
/// Working with a tree recurses where AND and OR change.
constexpr std::size_t kMostChanges = 1000;

std::shared_ptr<const ConditionTree> checked(ConditionTree tree)
{
    // Without a change, the depth is 1.
    if (tree.depth() > kMostChanges + 1) {
        dbif::throw_error(
            "The condition changes between AND and OR more than " + std::to_string(kMostChanges) +
                " times within itself. Ask in several queries.",
            __FILE__, __LINE__);
    }
    return std::make_shared<const ConditionTree>(std::move(tree));
}
} // namespace

DBIF_CompoundQueryCondition::DBIF_CompoundQueryCondition(
    const DBIF_QueryCondition* left,
    Operator op,
    const DBIF_QueryCondition* right)
    : tree_(checked(ConditionTree::joined(
          op == OR ? ConditionTree::Kind::Or : ConditionTree::Kind::And,
          {left->tree(false), right->tree(false)})))
{}

DBIF_CompoundQueryCondition::DBIF_CompoundQueryCondition(
    Operator op,
    const DBIF_QueryCondition* operand)
    : tree_(std::make_shared<const ConditionTree>(operand->tree(op == NOT)))
{}

DBIF_CompoundQueryCondition* DBIF_CompoundQueryCondition::clone() const
{
    return new DBIF_CompoundQueryCondition(*this);
}

ConditionTree DBIF_CompoundQueryCondition::tree(bool negated) const
{
    return negated ? tree_->negated() : *tree_;
}
