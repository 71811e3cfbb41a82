#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"
#include "dbif/schema/table_graph.h"

#include <vector>

namespace dbif {
/// The tables that a condition compares columns of.
TableSet tables_of(const ConditionTree& tree);

/// Selects records of one table, the base, with their parents: those for which some combination of
/// connected records makes the condition true. A record that has nothing below it counts as if all
/// comparisons there failed. With `latestOnly`, superseded setups do not count where setups are
/// looked at, nor superseded measurements where measurements or their conditions are the lowest
/// records looked at.
class RecordQuery
{
public:
    /// The base is the highest table that has all `results` among itself and its parents.
    RecordQuery(
        DBIF_Connection connection,
        const TableSet& results,
        const ConditionTree& condition,
        bool latestOnly);

    [[nodiscard]] RecordTable base() const { return base_; }

    /// Tells whether every record of the base is selected.
    [[nodiscard]] bool selectsAll() const;
    /// "SELECT expressions FROM ... WHERE ...". Expressions may use all columns of the base and of
    /// the tables in `results`, where an absent parent is NULL.
    [[nodiscard]] SqlText select(const std::vector<SqlText>& expressions, bool isDistinct) const;
    /// Selects the ids of the base, without reading its records where keys alone decide.
    [[nodiscard]] SqlText selectIds() const;

private:
    struct Split
    {
        ConditionTree above;
        ConditionTree below;
    };

    [[nodiscard]] ConditionTree unionOf(const std::vector<ConditionTree>& alternatives) const;
    [[nodiscard]] Split split(const ConditionTree& condition) const;
    [[nodiscard]] SqlText where(const Split& parts) const;
    [[nodiscard]] SqlText belowCriteria(const ConditionTree& below) const;
    [[nodiscard]] SqlText subSelect(RecordTable lowest, const ConditionTree& tree) const;
    [[nodiscard]] TableSet innerTables(RecordTable lowest, const TableSet& required) const;
    [[nodiscard]] SqlText
    from(RecordTable lowest, const TableSet& needed, const TableSet& required) const;

    DBIF_Connection connection_;
    TableSet results_;
    bool latestOnly_;
    RecordTable base_;
    TableSet aboveBase_;
    ConditionTree condition_;
};
} // namespace dbif
