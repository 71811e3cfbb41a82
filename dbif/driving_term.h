#pragma once

#include "dbif/condition_tree.h"
#include "dbif/connection.h"

namespace dbif {
/// Chooses which of the comparisons that a condition joins by AND drives its SQL: the one that
/// selects the fewest records of `base`, counted as far as it takes to tell them apart. All others
/// are marked as looked up record by record (`isLookedUp`). Nothing is marked where the engine
/// itself weighs sub-selects against each other, or where there is nothing to choose. Throws
/// `DBIF_Exception` on a database error.
ConditionTree
with_driving_term(const ConditionTree& condition, RecordTable base, DBIF_Connection& connection);
} // namespace dbif
