#include "dbif/record_query.h"

#include "dbif/condition_sql.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

/// The tree for a record that has nothing in the tables outside `tables`: comparisons there fail.
ConditionTree restricted_to(const ConditionTree& tree, const TableSet& tables)
{
    return tree.mapped([&tables](const ConditionTree& comparison) {
        return tables.has(comparison.comparison().table) ? comparison
                                                         : ConditionTree::constant(false);
    });
}

/// Whether the tree can only be true with a record in `table`.
bool requires_record(const ConditionTree& tree, RecordTable table)
{
    return tree.mapped([table](const ConditionTree& comparison) {
                   return ConditionTree::constant(comparison.comparison().table != table);
               })
               .kind() == Kind::False;
}

TableSet required_tables(const ConditionTree& tree)
{
    TableSet required;
    for (const RecordTable table : kRecordTables) {
        if (requires_record(tree, table)) {
            required.add(table);
        }
    }
    return required;
}

/// `tables` with all that lie on the paths from `lowest` up to them.
TableSet with_paths(RecordTable lowest, const TableSet& tables)
{
    TableSet all{lowest};
    for (const RecordTable table : kRecordTables) {
        if (tables.has(table)) {
            for (const RecordTable step : path_up(lowest, table)) {
                all.add(step);
            }
        }
    }
    return all;
}
} // namespace

TableSet tables_of(const ConditionTree& tree)
{
    TableSet tables;
    tree.forEachComparison(
        [&tables](const ColumnComparison& comparison) { tables.add(comparison.table); });
    return tables;
}

RecordQuery::RecordQuery(
    DBIF_Connection connection,
    const TableSet& results,
    ConditionTree condition,
    bool latestOnly)
    : connection_(std::move(connection)),
      results_(results),
      condition_(std::move(condition)),
      latestOnly_(latestOnly),
      base_(meeting_table(results)),
      aboveBase_(with_ancestors(base_))
{}

namespace {
/// The table whose superseded records do not count when `lowest` is the lowest table looked at.
const TableFacts* latest_table(RecordTable lowest)
{
    switch (lowest) {
    case RecordTable::Setup:
        return &facts(RecordTable::Setup);
    case RecordTable::MeasurementCondition:
    case RecordTable::Measurement:
        return &facts(RecordTable::Measurement);
    default:
        return nullptr;
    }
}
} // namespace

bool RecordQuery::selectsAll() const
{
    return condition_.kind() == Kind::True && !(latestOnly_ && latest_table(base_) != nullptr);
}

RecordQuery::Split RecordQuery::split() const
{
    std::vector<ConditionTree> above;
    std::vector<ConditionTree> below;
    const std::vector<ConditionTree> parts = condition_.kind() == Kind::And
                                                 ? condition_.operands()
                                                 : std::vector<ConditionTree>{condition_};
    for (const ConditionTree& part : parts) {
        (tables_of(part).isWithin(aboveBase_) ? above : below).push_back(part);
    }
    return {ConditionTree::joined(Kind::And, above), ConditionTree::joined(Kind::And, below)};
}

SqlText
RecordQuery::from(RecordTable lowest, const TableSet& needed, const TableSet& required) const
{
    TableSet inner = with_paths(lowest, required);
    TableSet all = with_paths(lowest, needed);
    const TableFacts* latest = latestOnly_ ? latest_table(lowest) : nullptr;
    if (latest != nullptr) {
        inner.add(with_paths(lowest, {latest->table}));
    }
    all.add(inner);

    SqlText sql;
    for (const RecordTable table : kUpwards) {
        if (!all.has(table)) {
            continue;
        }
        const TableFacts& f = facts(table);
        SqlText name;
        name << SqlName(f.name);
        if (latest == &f) {
            name = SqlText();
            name << SqlName(f.latestView()) << " AS " << SqlName(f.name);
        }
        if (table == lowest) {
            sql << "\nFROM " << name;
            continue;
        }
        const std::vector<RecordTable> path = path_up(lowest, table);
        const RecordTable child = path[path.size() - 2];
        sql << (inner.has(table) ? SqlText("\nJOIN ") : SqlText("\nLEFT JOIN ")) << name << " ON "
            << qualified(f.name, "id") << " = "
            << qualified(facts(child).name, link_column(child, table));
    }
    return sql;
}

SqlText RecordQuery::subSelect(RecordTable lowest, const ConditionTree& tree) const
{
    const std::vector<RecordTable> path = path_up(lowest, base_);
    const RecordTable child = path[path.size() - 2];
    TableSet required = required_tables(tree);
    required.add(child);
    TableSet needed = tables_of(tree);
    needed.add(required);
    SqlText sql;
    return sql << "(" << qualified(facts(base_).name, "id") << " IN (SELECT "
               << qualified(facts(child).name, link_column(child, base_))
               << from(lowest, needed, required) << "\nWHERE " << criteria(tree, connection_)
               << "))";
}

SqlText RecordQuery::belowCriteria(const ConditionTree& below) const
{
    TableSet looked = tables_of(below);
    looked.add(base_);
    const RecordTable lowest = meeting_table(looked);

    std::vector<SqlText> forms;
    const ConditionTree atBase = restricted_to(below, aboveBase_);
    if (atBase.kind() != Kind::False) {
        forms.push_back(criteria(atBase, connection_));
    }
    // What is decided at the base needs no second look from below.
    ConditionTree rest = below;
    if (below.kind() == Kind::Or) {
        std::vector<ConditionTree> parts;
        for (const ConditionTree& part : below.operands()) {
            if (!tables_of(part).isWithin(aboveBase_)) {
                parts.push_back(part);
            }
        }
        rest = ConditionTree::joined(Kind::Or, parts);
    }
    std::vector<RecordTable> path = path_up(lowest, base_);
    path.pop_back();
    std::reverse(path.begin(), path.end());
    for (const RecordTable level : path) {
        const ConditionTree atLevel = restricted_to(rest, with_ancestors(level));
        if (atLevel.kind() != Kind::False) {
            forms.push_back(subSelect(level, atLevel));
        }
    }
    SqlText sql;
    for (const SqlText& form : forms) {
        sql << (sql.isEmpty() ? SqlText("(") : SqlText("\nOR ")) << form;
    }
    return sql.isEmpty() ? SqlText("(1 = 0)") : sql << ")";
}

SqlText RecordQuery::select(const std::vector<SqlText>& expressions, bool isDistinct) const
{
    const Split parts = split();
    TableSet needed = results_;
    needed.add(tables_of(parts.above));
    const ConditionTree atBase = restricted_to(parts.below, aboveBase_);
    needed.add(tables_of(atBase));

    SqlText sql = isDistinct ? SqlText("SELECT DISTINCT ") : SqlText("SELECT ");
    for (std::size_t i = 0; i < expressions.size(); ++i) {
        sql << (i == 0 ? SqlText() : SqlText(", ")) << expressions[i];
    }
    sql << from(base_, needed, required_tables(parts.above));
    const bool hasAbove = parts.above.kind() != Kind::True;
    if (hasAbove) {
        sql << "\nWHERE " << criteria(parts.above, connection_);
    }
    if (parts.below.kind() != Kind::True) {
        sql << (hasAbove ? SqlText("\nAND ") : SqlText("\nWHERE ")) << belowCriteria(parts.below);
    }
    return sql;
}
} // namespace dbif
