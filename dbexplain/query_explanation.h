#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"

#include <optional>
#include <string>
#include <vector>

namespace dbapi {
/// Explains the tree of a query that is not empty, without what it keeps. `keys` has the keywords
/// of its terms. Throws `FaultError` for a query that the library refuses, and `DBIF_Exception` on
/// a database error.
NodeExplanation explain_tree(
    DBIF_Connection& connection,
    const QueryTree& tree,
    const std::vector<KeyExplanation>& keys);

/// Counts what conditions keep of one table.
class RecordCounter
{
public:
    RecordCounter(DBIF_Connection connection, dbif::RecordTable table, bool latestOnly)
        : connection_(std::move(connection)), table_(table), latestOnly_(latestOnly)
    {}

    /// Without a condition, all records are counted.
    [[nodiscard]] KeptCount count(const DBIF_QueryCondition* condition);
    /// Counts every node of the tree, and the operands of AND together, one after another; leaves
    /// trees of more than a hundred nodes, except for the whole.
    void countTree(NodeExplanation* tree);

private:
    void countNode(NodeExplanation* node);
    void countAnd(NodeExplanation* node);

    DBIF_Connection connection_;
    dbif::RecordTable table_;
    bool latestOnly_;
};

/// The condition that both hold.
std::shared_ptr<const DBIF_QueryCondition>
both(const DBIF_QueryCondition* first, const DBIF_QueryCondition* second);
} // namespace dbapi
