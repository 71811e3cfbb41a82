#include "dbif/condition/constant_condition.h"

#include "dbif/condition/condition_tree.h"

DBIF_TrueCondition* DBIF_TrueCondition::clone() const
{
    return new DBIF_TrueCondition(*this);
}

dbif::ConditionTree DBIF_TrueCondition::tree(bool negated) const
{
    return dbif::ConditionTree::constant(!negated);
}

DBIF_BooleanQueryCondition* DBIF_BooleanQueryCondition::clone() const
{
    return new DBIF_BooleanQueryCondition(*this);
}

dbif::ConditionTree DBIF_BooleanQueryCondition::tree(bool negated) const
{
    return dbif::ConditionTree::constant(value_ != negated);
}
