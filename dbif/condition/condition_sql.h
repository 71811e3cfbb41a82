#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"

namespace dbif {
/// The tree as a parenthesised SQL expression over the columns of the record tables. AND and OR
/// print as balanced trees, because databases bound the depth of an expression. A comparison on
/// points prints as what the bounds of a setup's columns allow.
SqlText criteria(const ConditionTree& tree, DBIF_Connection connection);

/// "SELECT expression FROM ... WHERE ...": the rows of the companion table whose key satisfies the
/// comparison, one for each record; of a key of setups, those whose bounds may.
SqlText records_with_key(
    const SqlText& expression,
    const ColumnComparison& comparison,
    DBIF_Connection& connection);
} // namespace dbif
