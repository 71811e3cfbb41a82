#include "dbif/driving_term.h"

#include "dbif/bulk_cursor.h"
#include "dbif/condition_sql.h"
#include "dbif/id_list.h"
#include "dbif/read_trace.h"
#include "dbif/table_graph.h"

#include <algorithm>
#include <optional>

namespace dbif {
namespace {
/// A comparison of the conjunction that may drive.
struct Candidate
{
    std::size_t operand;
    RecordTable table;
    /// The records that it selects, by id.
    SqlText select;
    std::size_t fanOut = 1;
};

/// Whether an index serves it, and it selects some records and not most of them.
bool may_drive(const ColumnComparison& comparison)
{
    if (comparison.isOnPoints() || comparison.idSelect.has_value() ||
        comparison.comparator == IS_NULL || comparison.comparator == NOT_NULL ||
        comparison.comparator == NOT_EQUAL || comparison.comparator == NOT_IN) {
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

/// Finds the comparison that drives.
class Choice
{
public:
    Choice(
        const std::vector<ConditionTree>& operands,
        RecordTable base,
        DBIF_Connection& connection)
        : base_(base), connection_(connection)
    {
        for (std::size_t i = 0; i < operands.size() && candidates_.size() < kMostCandidates; ++i) {
            if (operands[i].kind() == ConditionTree::Kind::Comparison &&
                may_drive(operands[i].comparison())) {
                add(i, operands[i].comparison());
            }
        }
    }

    /// The operand that drives.
    [[nodiscard]] std::optional<std::size_t> operand()
    {
        if (candidates_.empty()) {
            return std::nullopt;
        }
        if (candidates_.size() == 1) {
            return candidates_.front().operand;
        }
        for (Candidate& candidate : candidates_) {
            candidate.fanOut = fanOut(candidate.table);
        }
        for (std::size_t limit = kFirstLimit;; limit *= kLimitGrowth) {
            const auto few = std::find_if(
                candidates_.begin(), candidates_.end(), [&](const Candidate& candidate) {
                    return !selectsMore(candidate, limit / candidate.fanOut);
                });
            if (few != candidates_.end()) {
                return few->operand;
            }
        }
    }

private:
    static constexpr std::size_t kMostCandidates = 8;
    static constexpr std::size_t kFirstLimit = 1000;
    static constexpr std::size_t kLimitGrowth = 4;

    void add(std::size_t operand, const ColumnComparison& comparison)
    {
        Candidate candidate{operand, comparison.table, {}};
        if (comparison.isKey) {
            candidate.select = records_with_key("1", comparison, connection_);
        } else {
            candidate.select << "SELECT 1 FROM " << SqlName(facts(comparison.table).name)
                             << " WHERE "
                             << criteria(ConditionTree::comparison(comparison), connection_);
        }
        candidates_.push_back(std::move(candidate));
    }

    /// How many records of the base stand below one of the table, on average.
    std::size_t fanOut(RecordTable table)
    {
        if (table == base_ || !with_ancestors(base_).has(table)) {
            return 1;
        }
        const std::size_t above = std::max<std::size_t>(1, highest_id(connection_, table));
        return std::max<std::size_t>(1, highest_id(connection_, base_) / above);
    }

    bool selectsMore(const Candidate& candidate, std::size_t limit)
    {
        SqlText sql = candidate.select;
        sql << " LIMIT 1 OFFSET " << static_cast<long long>(limit);
        return BulkCursor(connection_, sql).next();
    }

    RecordTable base_;
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
    const TraceStep step(connection.trace(), "find the most selective term");
    std::vector<ConditionTree> operands = condition.operands();
    const std::optional<std::size_t> driver = Choice(operands, base, connection).operand();
    if (!driver.has_value()) {
        return condition;
    }
    const auto lookUp = [](const ConditionTree& comparison) {
        ColumnComparison lookedUp = comparison.comparison();
        lookedUp.isLookedUp = true;
        return ConditionTree::comparison(std::move(lookedUp));
    };
    for (std::size_t i = 0; i < operands.size(); ++i) {
        operands[i] = i == *driver ? operands[i] : operands[i].mapped(lookUp);
    }
    return ConditionTree::joined(ConditionTree::Kind::And, operands);
}
} // namespace dbif
