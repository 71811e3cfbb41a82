#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"

#include <functional>
#include <vector>

namespace dbif {
/// Makes one comparison of the alternatives of an OR, by the ids of the records that satisfy any.
using MakeUnion = std::function<ConditionTree(const std::vector<ConditionTree>& alternatives)>;

/// Chooses which of the terms that a condition joins by AND drives its SQL: the one that selects
/// the fewest records of `base`, counted as far as it takes to tell them apart. All others are
/// marked as looked up record by record (`isLookedUp`). Nothing is marked where the engine itself
/// weighs sub-selects against each other, or where there is nothing to choose.
///
/// An OR becomes one driving term, made by `makeUnion`, where each of its alternatives selects few
/// records: to decide it, an engine would look at every record, unless an index of one table finds
/// all alternatives.
///
/// Throws `DBIF_Exception` on a database error.
ConditionTree with_driving_term(
    const ConditionTree& condition,
    RecordTable base,
    DBIF_Connection& connection,
    const MakeUnion& makeUnion);
} // namespace dbif
