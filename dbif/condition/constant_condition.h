#pragma once

#include "dbif/condition/condition.h"

/// The condition that every record satisfies. Its SQL is "(1 = 1)", and it refers to no table.
class DBIF_TrueCondition : public DBIF_QueryCondition
{
public:
    [[nodiscard]] DBIF_TrueCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;
};

/// A condition that every record satisfies, or none. It refers to no table.
class DBIF_BooleanQueryCondition : public DBIF_QueryCondition
{
public:
    /// True: every record satisfies it; false: none does.
    explicit DBIF_BooleanQueryCondition(bool value) : value_(value) {}

    [[nodiscard]] DBIF_BooleanQueryCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;

private:
    bool value_;
};
