#pragma once

#include "dbif/condition/number_ranges.h"
#include "dbif/condition/query_enums.h"
#include "dbif/engine/sql_text.h"
#include "dbif/value/table_column.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// The ids of records, as the right side of an IN.
struct RecordIds
{
    SqlText sql;
    /// A statement that yields them in its only column, "id"; otherwise a list of numbers.
    bool isStatement = true;
};

/// One comparison, ready to be written as SQL or decided on a value.
struct ColumnComparison
{
    explicit ColumnComparison(TableColumn compared) : column(std::move(compared)) {}

    /// Selects the records of a table that have these ids.
    ColumnComparison(RecordTable table, RecordIds listed)
        : column(TableColumn::id(table)), ids(std::move(listed))
    {}

    TableColumn column;
    Comparator comparator = EQUAL;
    /// A column of numbers compares by ranges, every other one by texts.
    bool holdsNumbers = false;
    NumberRanges ranges;
    std::vector<std::string> texts;
    /// When given, the comparison holds for these records.
    std::optional<RecordIds> ids;
    /// Tells whether it prints as a look-up for each record that other comparisons leave, and not
    /// as the set of all records that satisfy it.
    bool isLookedUp = false;

    /// Tells whether it is decided on points of a setup.
    [[nodiscard]] bool isOnPoints() const { return column.isOnPoints(); }

    /// Tells whether a text satisfies it (not for columns of numbers).
    [[nodiscard]] bool holdsFor(std::string_view text) const;
    [[nodiscard]] ColumnComparison negated() const;
};

/// A condition without NOT: comparisons under AND and OR. Nodes are shared and never change, so
/// copying costs nothing. Long chains are walked in a loop; only changes between AND and OR
/// recurse.
class ConditionTree
{
public:
    enum class Kind { True, False, Comparison, And, Or };

    static ConditionTree constant(bool value);
    static ConditionTree comparison(ColumnComparison comparison);
    /// Joins trees by `And` or `Or`, and folds the constants among them. Without operands, `And`
    /// gives True and `Or` gives False.
    static ConditionTree joined(Kind kind, const std::vector<ConditionTree>& operands);

    [[nodiscard]] Kind kind() const;
    /// The number of comparisons (constants count too), and how many times `And` and `Or` change
    /// within each other.
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::size_t depth() const;

    [[nodiscard]] bool isConstant() const { return kind() == Kind::True || kind() == Kind::False; }

    /// The comparison; only for a tree of the kind `Comparison`.
    [[nodiscard]] const ColumnComparison& comparison() const;
    /// The operands of an `And` or `Or`, chains of the same kind flattened; for any other kind the
    /// tree itself.
    [[nodiscard]] std::vector<ConditionTree> operands() const;

    /// The terms that all have to be true: the operands of an `And`, or any other tree by itself.
    [[nodiscard]] std::vector<ConditionTree> conjuncts() const;

    [[nodiscard]] ConditionTree negated() const;
    /// The tree with every comparison replaced by what `replace` gives for it.
    [[nodiscard]] ConditionTree
    mapped(const std::function<ConditionTree(const ConditionTree& comparison)>& replace) const;
    void forEachComparison(const std::function<void(const ColumnComparison&)>& visit) const;
    [[nodiscard]] bool any(const std::function<bool(const ColumnComparison&)>& test) const;
    /// Tells whether it compares points of setups.
    [[nodiscard]] bool hasPoints() const;

private:
    struct Node;

    explicit ConditionTree(std::shared_ptr<const Node> node) : node_(std::move(node)) {}

    std::shared_ptr<const Node> node_;
};
} // namespace dbif
