#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"

#include <optional>
#include <string>
#include <vector>

namespace dbapi::tool {
/// The query behind an "ALLDATA:", if it has one.
std::string query_without_command(const std::string& query);

/// Explains the tree of a query (not an empty one) that the library has accepted, without what it
/// keeps. `keys` has the keywords of its terms. Nothing, with the library's error text, for a query
/// that the library refuses.
std::optional<NodeExplanation> explain_tree(
    DBIF_Connection& connection,
    const std::string& query,
    const std::vector<KeyExplanation>& keys,
    bool latestOnly,
    std::string* error);

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
} // namespace dbapi::tool
