#pragma once

#include "dbif/condition_tree.h"

namespace dbif {
/// The same condition in fewer comparisons: comparisons of one column of numbers that AND or OR
/// joins become one (each record, and each point, has one value of it), so that an index finds a
/// range from both ends; equalities of one column of texts that OR joins, and inequalities that AND
/// joins, become a list; and every record of `base` has an id.
ConditionTree simplified(const ConditionTree& condition, RecordTable base);
} // namespace dbif
