#include "dbif/query/record_query.h"

#include "dbif/condition/condition_simplification.h"
#include "dbif/condition/condition_sql.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/host/exception.h"
#include "dbif/query/driving_term.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

/// The tree for a record that has nothing in the tables outside `tables`: comparisons there fail.
ConditionTree restricted_to(const ConditionTree& tree, const TableSet& tables)
{
    return tree.mapped([&tables](const ConditionTree& comparison) {
        return tables.has(comparison.comparison().column.table()) ? comparison
                                                                  : ConditionTree::constant(false);
    });
}

/// Tells whether the tree can only be true with a record in `table`.
bool requires_record(const ConditionTree& tree, RecordTable table)
{
    return tree.mapped([table](const ConditionTree& comparison) {
                   return ConditionTree::constant(comparison.comparison().column.table() != table);
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
        if (!tables.has(table)) {
            continue;
        }
        for (const RecordTable step : path_up(lowest, table)) {
            all.add(step);
        }
    }
    return all;
}
} // namespace

TableSet tables_of(const ConditionTree& tree)
{
    TableSet tables;
    tree.forEachComparison(
        [&tables](const ColumnComparison& comparison) { tables.add(comparison.column.table()); });
    return tables;
}

namespace {
/// Engines give up at 65,535 references to one table, and a comparison takes up to two.
constexpr std::size_t kMostComparisons = 30'000;

ConditionTree simplified_and_checked(const ConditionTree& condition, RecordTable base)
{
    ConditionTree result = simplified(condition, base);
    if (result.size() > kMostComparisons) {
        throw_error(
            "The condition has " + std::to_string(result.size()) + " comparisons, and " +
                std::to_string(kMostComparisons) +
                " is the most. Write the values of one keyword as a list, or ask in several queries.",
            __FILE__, __LINE__);
    }
    return result;
}
} // namespace

RecordQuery::RecordQuery(
    DBIF_Connection connection,
    const TableSet& results,
    const ConditionTree& condition,
    bool latestOnly)
    : connection_(std::move(connection)),
      results_(results),
      latestOnly_(latestOnly),
      base_(meeting_table(results)),
      aboveBase_(with_ancestors(base_)),
      condition_(with_driving_term(
          simplified_and_checked(condition, base_),
          base_,
          connection_,
          [this](const std::vector<ConditionTree>& alternatives) { return unionOf(alternatives); }))
{}

namespace {
/// The table whose superseded records do not count when `lowest` is the lowest table looked at.
const TableInfo* latest_table(RecordTable lowest)
{
    switch (lowest) {
    case RecordTable::Setup:
        return &table_info(RecordTable::Setup);
    case RecordTable::MeasurementCondition:
    case RecordTable::Measurement:
        return &table_info(RecordTable::Measurement);
    default:
        return nullptr;
    }
}
} // namespace

bool RecordQuery::selectsAll() const
{
    return condition_.kind() == Kind::True && !(latestOnly_ && latest_table(base_) != nullptr);
}

namespace {
/// Tells whether the companion table alone decides which records of `table` satisfy the comparison.
bool picks_by_key(const ColumnComparison& comparison, RecordTable table)
{
    return comparison.column.isKey() && comparison.column.table() == table &&
           !comparison.isOnPoints() && !comparison.isLookedUp && comparison.comparator != IS_NULL;
}

/// Tells whether the companion table alone decides it for a record that another comparison picks.
bool can_be_joined(const ConditionTree& part, RecordTable table)
{
    if (part.kind() != Kind::Comparison) {
        return false;
    }
    const ColumnComparison& comparison = part.comparison();
    return comparison.column.isKey() && comparison.column.table() == table &&
           !comparison.isOnPoints() && comparison.isLookedUp && comparison.comparator != IS_NULL;
}

/// Joins, to records that are picked already, the rows of keys that `rest` looks up, and takes
/// those out of it. A record has one row of a key, so that this selects the same as EXISTS, which
/// costs a quarter more.
SqlText join_keys(RecordTable base, DBIF_Connection& connection, std::vector<ConditionTree>* rest)
{
    constexpr std::size_t kMostJoins = 16;
    const TableInfo& f = table_info(base);
    const SqlText link = SqlText() << SqlName(f.linkColumn());
    SqlText joins;
    std::vector<ConditionTree> kept;
    std::size_t count = 0;
    for (const ConditionTree& part : *rest) {
        if (count == kMostJoins || !can_be_joined(part, base)) {
            kept.push_back(part);
            continue;
        }
        const std::string name = "key" + std::to_string(++count);
        joins << "\n"
              << connection.inner().dialect().orderedJoin() << "("
              << records_with_key(link, part.comparison(), connection) << ") AS " << SqlName(name)
              << " ON " << qualified(name, f.linkColumn()) << " = " << qualified(f.name, "id");
    }
    *rest = std::move(kept);
    return joins;
}
} // namespace

/// One comparison with the ids of the base that satisfy any of the alternatives.
ConditionTree RecordQuery::unionOf(const std::vector<ConditionTree>& alternatives) const
{
    SqlText parts;
    for (const ConditionTree& alternative : alternatives) {
        // Tells whether the record itself is the latest is decided outside.
        const bool looksBelow = !tables_of(alternative).isWithin(aboveBase_);
        const RecordQuery records(connection_, {base_}, alternative, latestOnly_ && looksBelow);
        parts << (parts.isEmpty() ? SqlText() : SqlText("\nUNION\n")) << records.selectIds();
    }
    RecordIds records;
    records.sql << "SELECT id FROM (" << parts << ") AS alternatives";
    return ConditionTree::comparison({base_, std::move(records)});
}

RecordQuery::Split RecordQuery::split(const ConditionTree& condition) const
{
    std::vector<ConditionTree> above;
    std::vector<ConditionTree> below;
    for (const ConditionTree& part : condition.conjuncts()) {
        (tables_of(part).isWithin(aboveBase_) ? above : below).push_back(part);
    }
    return {ConditionTree::joined(Kind::And, above), ConditionTree::joined(Kind::And, below)};
}

/// The tables that a selected record of `lowest` has to be connected with.
TableSet RecordQuery::innerTables(RecordTable lowest, const TableSet& required) const
{
    TableSet inner = with_paths(lowest, required);
    const TableInfo* latest = latestOnly_ ? latest_table(lowest) : nullptr;
    if (latest != nullptr) {
        inner.add(with_paths(lowest, {latest->table}));
    }
    return inner;
}

SqlText
RecordQuery::from(RecordTable lowest, const TableSet& needed, const TableSet& required) const
{
    const TableSet inner = innerTables(lowest, required);
    TableSet all = with_paths(lowest, needed);
    all.add(inner);
    const TableInfo* latest = latestOnly_ ? latest_table(lowest) : nullptr;

    SqlText sql;
    for (const RecordTable table : kUpwards) {
        if (!all.has(table)) {
            continue;
        }
        const TableInfo& f = table_info(table);
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
            << qualified(table_info(child).name, link_column(child, table));
    }
    return sql;
}

namespace {
/// Tells whether something else picks the records, so that the whole tree is only looked up.
bool is_looked_up(const ConditionTree& tree)
{
    return !tree.any([](const ColumnComparison& comparison) { return !comparison.isLookedUp; });
}

ConditionTree not_looked_up(const ConditionTree& tree)
{
    return tree.mapped([](const ConditionTree& comparison) {
        ColumnComparison picking = comparison.comparison();
        picking.isLookedUp = false;
        return ConditionTree::comparison(std::move(picking));
    });
}
} // namespace

SqlText RecordQuery::subSelect(RecordTable lowest, const ConditionTree& tree) const
{
    const std::vector<RecordTable> path = path_up(lowest, base_);
    const RecordTable child = path[path.size() - 2];
    TableSet required = required_tables(tree);
    required.add(child);
    TableSet needed = tables_of(tree);
    needed.add(required);
    const SqlText id = qualified(table_info(base_).name, "id");
    const SqlText link = qualified(table_info(child).name, link_column(child, base_));
    // A sub-select that has the base itself among its tables cannot name the record outside.
    const bool isLookUp = is_looked_up(tree) && !with_paths(lowest, needed).has(base_) &&
                          !innerTables(lowest, required).has(base_);
    SqlText sql;
    if (isLookUp) {
        return sql << "(EXISTS (SELECT 1" << from(lowest, needed, required) << "\nWHERE " << link
                   << " = " << id << " AND " << criteria(tree, connection_) << "))";
    }
    return sql << "(" << id << " IN (SELECT " << link << from(lowest, needed, required)
               << "\nWHERE "
               << criteria(is_looked_up(tree) ? not_looked_up(tree) : tree, connection_) << "))";
}

namespace {
/// The operands of an OR that compare a column of a table outside `tables`; any other tree whole.
ConditionTree reaching_beyond(const TableSet& tables, const ConditionTree& tree)
{
    if (tree.kind() != Kind::Or) {
        return tree;
    }
    std::vector<ConditionTree> parts;
    for (const ConditionTree& part : tree.operands()) {
        if (!tables_of(part).isWithin(tables)) {
            parts.push_back(part);
        }
    }
    return ConditionTree::joined(Kind::Or, parts);
}
} // namespace

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
    // Operands that are decided at the base need no second look from below.
    const ConditionTree rest = reaching_beyond(aboveBase_, below);
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

SqlText RecordQuery::where(const Split& parts) const
{
    const bool hasAbove = parts.above.kind() != Kind::True;
    SqlText sql;
    if (hasAbove) {
        sql << "\nWHERE " << criteria(parts.above, connection_);
    }
    if (parts.below.kind() != Kind::True) {
        sql << (hasAbove ? SqlText("\nAND ") : SqlText("\nWHERE ")) << belowCriteria(parts.below);
    }
    return sql;
}

SqlText RecordQuery::select(const std::vector<SqlText>& expressions, bool isDistinct) const
{
    const Split parts = split(condition_);
    TableSet needed = results_;
    needed.add(tables_of(parts.above));
    needed.add(tables_of(restricted_to(parts.below, aboveBase_)));

    SqlText sql = isDistinct ? SqlText("SELECT DISTINCT ") : SqlText("SELECT ");
    return sql << listed(expressions) << from(base_, needed, required_tables(parts.above))
               << where(parts);
}

SqlText RecordQuery::selectIds() const
{
    const SqlText id = qualified(table_info(base_).name, "id");
    std::vector<ConditionTree> rest = condition_.conjuncts();
    const auto driver = std::find_if(rest.begin(), rest.end(), [this](const ConditionTree& part) {
        return part.kind() == Kind::Comparison && picks_by_key(part.comparison(), base_);
    });
    if (driver == rest.end() || (latestOnly_ && latest_table(base_) != nullptr)) {
        return select({id}, false);
    }
    const ColumnComparison picking = driver->comparison();
    rest.erase(driver);
    const ConditionTree others = ConditionTree::joined(Kind::And, rest);
    const bool needsRecord = others.any([this](const ColumnComparison& comparison) {
        return comparison.column.table() == base_ ? !comparison.column.isKey()
                                                  : aboveBase_.has(comparison.column.table());
    });
    if (needsRecord) {
        return select({id}, false);
    }
    DBIF_Connection connection = connection_;
    const SqlText joins = join_keys(base_, connection, &rest);
    SqlText link;
    link << SqlName(table_info(base_).linkColumn()) << " AS id";
    SqlText sql = "SELECT ";
    return sql << id << "\nFROM (" << records_with_key(link, picking, connection) << ") AS "
               << SqlName(table_info(base_).name) << joins
               << where(split(ConditionTree::joined(Kind::And, rest)));
}
} // namespace dbif
