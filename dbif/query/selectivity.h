#pragma once

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/connection.h"

#include <map>
#include <vector>

namespace dbif {
/// Tells whether an index finds the records that satisfy the comparison, and these are as a rule
/// not most of them.
bool may_drive(const ColumnComparison& comparison);

/// Tells whether an index finds the records that satisfy the tree: by one operand of an AND, by all
/// of an OR.
bool is_found_by_index(const ConditionTree& tree);

/// Estimates how many records of one table, the base, a condition selects: they are counted in
/// indexes, and only as far as the caller needs. Throws `DBIF_Exception` on a database error.
class Selectivity
{
public:
    Selectivity(RecordTable base, DBIF_Connection connection);

    /// Tells whether finding the records one by one costs less than passing over all of the base.
    bool selectsFew(const ConditionTree& tree);

    /// The place in `operands` of the candidate that selects the fewest records;
    /// `is_found_by_index` holds for each of the candidates.
    std::size_t
    fewest(const std::vector<ConditionTree>& operands, const std::vector<std::size_t>& candidates);

private:
    bool selectsMore(const ConditionTree& tree, std::size_t limit);
    bool doesSelectMore(const ColumnComparison& comparison, std::size_t limit);
    std::size_t fanOut(RecordTable table);
    std::size_t highestId(RecordTable table);

    RecordTable base_;
    DBIF_Connection connection_;
    std::map<RecordTable, std::size_t> highestIds_;
};
} // namespace dbif
