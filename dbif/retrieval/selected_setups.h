#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"
#include "dbif/engine/read_trace.h"
#include "dbif/retrieval/record_reader.h"
#include "dbif/sweep/point_filter.h"
#include "dbif/sweep/sweep_reader.h"
#include "dbif/value/table_column.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace dbif {
/// The place of a key among columns that are read, each of them once however often it is asked for;
/// the end when it is not among them.
std::size_t place_of_key(const std::vector<KeyDefinition>& columns, const std::string& key);

/// The setups that may have points which satisfy a condition, in the order of their ids, with what
/// is known of each before its points are read; then decides on these.
class SelectedSetups
{
    Q_DISABLE_COPY_MOVE(SelectedSetups)

public:
    /// Selects, by SQL. `sources` are record columns to read beside each setup, of which the last
    /// `uncounted` give it no value. Where `keys` are given, setups without any of them may be left
    /// out.
    SelectedSetups(
        DBIF_Connection& connection,
        const std::vector<TableColumn>& sources,
        std::size_t uncounted,
        const std::vector<KeyDefinition>& keys,
        const ConditionTree& condition,
        bool latestOnly);
    ~SelectedSetups();

    [[nodiscard]] const std::vector<int>& ids() const { return setups_; }

    /// The column of a source, a value per setup.
    [[nodiscard]] ResultColumn& column(std::size_t source) { return cells_.columns[source]; }

    [[nodiscard]] bool hasRecordValue(std::size_t place) const
    {
        return hasRecordValue_[place] != 0;
    }

    [[nodiscard]] bool isDecidedOnPoints() const
    {
        return pointPart_.kind() != ConditionTree::Kind::True;
    }

    /// Adds the keys that the condition looks at to the columns that are read.
    void addConditionKeys(DBIF_Connection& connection, std::vector<KeyDefinition>* columns);

    /// Marks the points of a setup that satisfy the condition. The keys have been added before.
    [[nodiscard]] PointMask satisfying(const SweepPoints& points);

private:
    void select(
        DBIF_Connection& connection,
        const std::vector<TableColumn>& sources,
        std::size_t uncounted,
        const ConditionTree& condition,
        bool latestOnly);

    ConditionTree pointPart_;
    /// The place of a comparison on records among the flags, and of one on points among the
    /// columns.
    std::unordered_map<const ColumnComparison*, std::size_t> flags_;
    std::unordered_map<const ColumnComparison*, std::size_t> columns_;
    std::size_t firstFlag_ = 0;
    QueryResult cells_;
    RowMask hasRecordValue_;
    std::vector<int> setups_;
    ReadTrace* trace_;
    TracedPoints decided_;
};
} // namespace dbif
