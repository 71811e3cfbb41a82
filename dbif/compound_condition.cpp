#include "dbif/compound_condition.h"

#include "dbif/condition_tree.h"

using dbif::ConditionTree;

DBIF_CompoundQueryCondition::DBIF_CompoundQueryCondition(
    const DBIF_QueryCondition* left,
    Operator op,
    const DBIF_QueryCondition* right)
    : tree_(std::make_shared<const ConditionTree>(ConditionTree::joined(
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
