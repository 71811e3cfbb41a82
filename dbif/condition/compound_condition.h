#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"

#include <memory>

/// Two conditions joined by AND or OR, or one negated by NOT. The operands are copied when the
/// condition is made: the caller goes on owning them and may destroy them at once. Copies of a
/// compound share its data.
///
/// NOT is pushed down to the comparisons, so it selects the records for which a comparison fails,
/// not those that have nothing to compare.
class DBIF_CompoundQueryCondition : public DBIF_QueryCondition
{
public:
    /// Joins two conditions, neither of them null: by OR where `op` is `OR`, otherwise by AND.
    /// Throws `DBIF_Exception` when AND and OR then change more than 1000 times within each other.
    DBIF_CompoundQueryCondition(
        const DBIF_QueryCondition* left,
        Operator op,
        const DBIF_QueryCondition* right);

    /// Negates the condition where `op` is `NOT`; any other operator leaves it as it is.
    DBIF_CompoundQueryCondition(Operator op, const DBIF_QueryCondition* operand);

    [[nodiscard]] DBIF_CompoundQueryCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;

private:
    std::shared_ptr<const dbif::ConditionTree> tree_;
};
