#pragma once

#include "dbif/condition/condition.h"

/// The condition that holds for every record; its text is "(1 = 1)".
class DBIF_TrueCondition : public DBIF_QueryCondition
{
public:
    [[nodiscard]] DBIF_TrueCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;
};

/// A condition that holds for every record, or for none.
class DBIF_BooleanQueryCondition : public DBIF_QueryCondition
{
public:
    explicit DBIF_BooleanQueryCondition(bool value) : value_(value) {}

    [[nodiscard]] DBIF_BooleanQueryCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;

private:
    bool value_;
};
