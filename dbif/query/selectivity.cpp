#include "dbif/query/selectivity.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/schema/table_graph.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

constexpr std::size_t kFirstLimit = 1000;
constexpr std::size_t kLimitGrowth = 4;
/// Finding one record by an index costs about as much as passing over this many records.
constexpr std::size_t kPassedPerLookUp = 10;
} // namespace

bool may_drive(const ColumnComparison& comparison)
{
    if (comparison.isOnPoints() || comparison.ids.has_value() || comparison.comparator == IS_NULL ||
        comparison.comparator == NOT_NULL || comparison.comparator == NOT_EQUAL ||
        comparison.comparator == NOT_IN) {
        return false;
    }
    if (comparison.column.isKey()) {
        return true;
    }
    return comparison.column.fixed().indexed == Indexed::Yes;
}

bool is_found_by_index(const ConditionTree& tree)
{
    const std::vector<ConditionTree> operands = tree.operands();
    switch (tree.kind()) {
    case Kind::And:
        return std::any_of(operands.begin(), operands.end(), is_found_by_index);
    case Kind::Or:
        return std::all_of(operands.begin(), operands.end(), is_found_by_index);
    case Kind::Comparison:
        return may_drive(tree.comparison());
    case Kind::True:
    case Kind::False:
        break;
    }
    return false;
}

Selectivity::Selectivity(RecordTable base, DBIF_Connection connection)
    : base_(base), connection_(std::move(connection))
{}

bool Selectivity::selectsFew(const ConditionTree& tree)
{
    return !selectsMore(tree, std::max(kFirstLimit, highestId(base_) / kPassedPerLookUp));
}

std::size_t Selectivity::fewest(
    const std::vector<ConditionTree>& operands,
    const std::vector<std::size_t>& candidates)
{
    if (candidates.size() == 1) {
        return candidates.front();
    }
    for (std::size_t limit = kFirstLimit;; limit *= kLimitGrowth) {
        const auto few =
            std::find_if(candidates.begin(), candidates.end(), [&](std::size_t candidate) {
                return !selectsMore(operands[candidate], limit);
            });
        if (few != candidates.end()) {
            return *few;
        }
    }
}

bool Selectivity::selectsMore(const ConditionTree& tree, std::size_t limit)
{
    const std::vector<ConditionTree> operands = tree.operands();
    const auto doesOne = [this, limit](const ConditionTree& operand) {
        return selectsMore(operand, limit);
    };
    switch (tree.kind()) {
    case Kind::And:
        return std::all_of(operands.begin(), operands.end(), doesOne);
    case Kind::Or:
        return std::any_of(operands.begin(), operands.end(), doesOne);
    case Kind::Comparison:
        return !may_drive(tree.comparison()) || doesSelectMore(tree.comparison(), limit);
    case Kind::True:
    case Kind::False:
        break;
    }
    return tree.kind() == Kind::True;
}

/// Tells whether the comparison selects more than `limit` records of the base.
bool Selectivity::doesSelectMore(const ColumnComparison& comparison, std::size_t limit)
{
    SqlText sql;
    if (comparison.column.isKey()) {
        sql = records_with_key("1", comparison, connection_);
    } else {
        sql << "SELECT 1 FROM " << SqlName(table_info(comparison.column.table()).name) << " WHERE "
            << criteria(ConditionTree::comparison(comparison), connection_);
    }
    sql << " LIMIT 1 OFFSET " << static_cast<long long>(limit / fanOut(comparison.column.table()));
    return BulkCursor(connection_, sql).next();
}

/// The average number of records of the base below one of the table.
std::size_t Selectivity::fanOut(RecordTable table)
{
    if (table == base_ || !with_ancestors(base_).has(table)) {
        return 1;
    }
    const std::size_t above = std::max<std::size_t>(1, highestId(table));
    return std::max<std::size_t>(1, highestId(base_) / above);
}

std::size_t Selectivity::highestId(RecordTable table)
{
    const auto [known, isNew] = highestIds_.emplace(table, 0);
    if (isNew) {
        known->second = highest_id(connection_, table);
    }
    return known->second;
}
} // namespace dbif
