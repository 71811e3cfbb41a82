#include "dbif/driving_term.h"

#include "dbif/bulk_cursor.h"
#include "dbif/condition_sql.h"
#include "dbif/id_list.h"
#include "dbif/table_graph.h"

#include <algorithm>
#include <optional>

namespace dbif {
namespace {
/// A comparison of the conjunction that an index serves.
struct Candidate
{
    std::size_t operand;
    /// The records that it selects, by id.
    SqlText select;
    /// How many records of the base stand below one of its records, on average.
    std::size_t fanOut = 1;
};

bool is_served_by_index(const ColumnComparison& comparison)
{
    if (comparison.isOnPoints() || comparison.idSelect.has_value() ||
        comparison.comparator == IS_NULL || comparison.comparator == NOT_EQUAL ||
        comparison.comparator == NOT_IN) {
        return false;
    }
    if (comparison.isKey) {
        return true;
    }
    const auto columns = facts(comparison.table).fixedColumns;
    return std::any_of(columns.begin(), columns.end(), [&](const FixedColumnFacts& column) {
        return column.name == comparison.column && column.indexed == Indexed::Yes;
    });
}

bool is_above(RecordTable table, RecordTable base)
{
    return table != base && with_ancestors(base).has(table);
}

class Choice
{
public:
    Choice(
        const std::vector<ConditionTree>& operands,
        RecordTable base,
        DBIF_Connection& connection)
        : connection_(connection)
    {
        for (std::size_t i = 0; i < operands.size() && candidates_.size() < kMostCandidates; ++i) {
            if (operands[i].kind() == ConditionTree::Kind::Comparison &&
                is_served_by_index(operands[i].comparison())) {
                add(i, operands[i].comparison(), base);
            }
        }
    }

    /// The operand that drives.
    std::optional<std::size_t> operand()
    {
        if (candidates_.empty()) {
            return std::nullopt;
        }
        std::size_t limit = kFirstLimit;
        while (true) {
            for (const Candidate& candidate : candidates_) {
                if (!selectsMore(candidate, limit / candidate.fanOut)) {
                    return candidate.operand;
                }
            }
            limit *= kLimitGrowth;
        }
    }

private:
    static constexpr std::size_t kMostCandidates = 8;
    static constexpr std::size_t kFirstLimit = 1000;
    static constexpr std::size_t kLimitGrowth = 4;

    void add(std::size_t operand, const ColumnComparison& comparison, RecordTable base)
    {
        Candidate candidate{operand, {}, 1};
        if (comparison.isKey) {
            candidate.select = records_with_key("1", comparison, connection_);
        } else {
            candidate.select << "SELECT 1 FROM " << SqlName(facts(comparison.table).name)
                             << " WHERE "
                             << criteria(ConditionTree::comparison(comparison), connection_);
        }
        if (is_above(comparison.table, base)) {
            candidate.fanOut = std::max<std::size_t>(
                1, highest_id(connection_, base) /
                       std::max<std::size_t>(1, highest_id(connection_, comparison.table)));
        }
        candidates_.push_back(std::move(candidate));
    }

    bool selectsMore(const Candidate& candidate, std::size_t limit)
    {
        SqlText sql = candidate.select;
        sql << " LIMIT 1 OFFSET " << static_cast<long long>(limit);
        return BulkCursor(connection_, sql).next();
    }

    DBIF_Connection& connection_;
    std::vector<Candidate> candidates_;
};
} // namespace

ConditionTree
with_driving_term(const ConditionTree& condition, RecordTable base, DBIF_Connection& connection)
{
    if (condition.kind() != ConditionTree::Kind::And || connection.dialect().weighsSubSelects()) {
        return condition;
    }
    std::vector<ConditionTree> operands = condition.operands();
    const std::optional<std::size_t> driver = Choice(operands, base, connection).operand();
    if (!driver.has_value()) {
        return condition;
    }
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (i != *driver) {
            operands[i] = operands[i].mapped([](const ConditionTree& comparison) {
                ColumnComparison lookedUp = comparison.comparison();
                lookedUp.isLookedUp = true;
                return ConditionTree::comparison(std::move(lookedUp));
            });
        }
    }
    return ConditionTree::joined(ConditionTree::Kind::And, operands);
}
} // namespace dbif
