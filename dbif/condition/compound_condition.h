#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"

#include <memory>

/// Two conditions joined by AND or OR, or one negated by NOT. Keeps clones of its operands, which
/// the caller goes on owning; copies share them. NOT is pushed down to the comparisons, so it
/// selects the records for which a comparison fails, not those that have nothing to compare.
class DBIF_CompoundQueryCondition : public DBIF_QueryCondition
{
public:
    /// Throws `DBIF_Exception` when AND and OR change more than 1000 times within each other.
    DBIF_CompoundQueryCondition(
        const DBIF_QueryCondition* left,
        Operator op,
        const DBIF_QueryCondition* right);
    DBIF_CompoundQueryCondition(Operator op, const DBIF_QueryCondition* operand);

    [[nodiscard]] DBIF_CompoundQueryCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;

private:
    std::shared_ptr<const dbif::ConditionTree> tree_;
};
