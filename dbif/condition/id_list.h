#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"

#include <QtGlobal>

#include <vector>

namespace dbif {
/// A condition made from a tree by these libraries.
class TreeCondition : public DBIF_QueryCondition
{
public:
    explicit TreeCondition(ConditionTree tree) : tree_(std::move(tree)) {}

    [[nodiscard]] TreeCondition* clone() const override { return new TreeCondition(*this); }

    [[nodiscard]] ConditionTree tree(bool negated) const override
    {
        return negated ? tree_.negated() : tree_;
    }

private:
    ConditionTree tree_;
};

/// Records of one table, picked by their ids, as a condition: up to 500 ids as a list in the
/// statement, more in a temporary table. The table lives as long as this object, or until a
/// statement that still reads it has ended.
class IdList
{
    Q_DISABLE_COPY_MOVE(IdList)

public:
    IdList(DBIF_Connection connection, RecordTable table, const std::vector<int>& ids);
    ~IdList();

    [[nodiscard]] const ConditionTree& condition() const { return condition_; }

private:
    DBIF_Connection connection_;
    std::string temporaryTable_;
    ConditionTree condition_ = ConditionTree::constant(false);
};

/// `count` of the ids, from the place `first` on, as a list: "1, 2, 3".
SqlText id_sequence(const std::vector<int>& ids, std::size_t first, std::size_t count);
/// The highest id in a table, which is about the number of its records; 0 when it is empty.
std::size_t highest_id(DBIF_Connection& connection, RecordTable table);
} // namespace dbif
