#include "dbif/condition/condition_sql.h"

#include "dbif/connection/column_store.h"

#include <algorithm>
#include <span>

namespace dbif {
namespace {
/// `column` compared with texts. No parentheses around.
SqlText text_condition(const SqlText& column, const ColumnComparison& comparison)
{
    SqlText sql;
    sql << column;
    const auto first = [&comparison] {
        return SqlLiteral(
            comparison.texts.empty() ? std::string_view()
                                     : std::string_view(comparison.texts.front()));
    };
    switch (comparison.comparator) {
    case EQUAL:
        return sql << " = " << first();
    case NOT_EQUAL:
        return sql << " <> " << first();
    case LESS:
        return sql << " < " << first();
    case LESS_EQUAL:
        return sql << " <= " << first();
    case GREATER:
        return sql << " > " << first();
    case GREATER_EQUAL:
        return sql << " >= " << first();
    case NOT_NULL:
        return sql << " IS NOT NULL";
    case IS_NULL:
    case IN:
    case NOT_IN:
        break;
    }
    const auto literal = [](const std::string& text) {
        return SqlLiteral(text);
    };
    return sql << (comparison.comparator == IN ? SqlText(" IN (") : SqlText(" NOT IN ("))
               << listed(comparison.texts, literal) << ")";
}

SqlText value_condition(
    const SqlText& column,
    const ColumnComparison& comparison,
    const SqlDialect& dialect)
{
    if (!comparison.holdsNumbers) {
        return text_condition(column, comparison);
    }
    return ranges_condition(column, comparison.ranges, dialect);
}

/// Whether a record has the key with such a value.
SqlText key_condition(const ColumnComparison& comparison, DBIF_Connection& connection)
{
    const TableInfo& f = table_info(comparison.column.table());
    const SqlText id = qualified(f.name, "id");
    SqlText sql;
    if (comparison.isLookedUp) {
        return sql << "(EXISTS (" << records_with_key("1", comparison, connection) << " AND "
                   << SqlName(f.linkColumn()) << " = " << id << "))";
    }
    SqlText link;
    link << SqlName(f.linkColumn());
    return sql << "(" << id << " IN (" << records_with_key(link, comparison, connection) << "))";
}

/// That a record has no value. Of a record that there is not, nothing is true.
SqlText absence_condition(const ColumnComparison& comparison, DBIF_Connection& connection)
{
    const SqlText id = qualified(table_info(comparison.column.table()).name, "id");
    SqlText sql;
    sql << "(" << id << " IS NOT NULL";
    // A setup that holds a key may have points without a value of it.
    if (comparison.column.isKey() && !comparison.isOnPoints()) {
        ColumnComparison presence = comparison;
        presence.comparator = NOT_NULL;
        sql << " AND NOT " << key_condition(presence, connection);
    } else if (!comparison.column.isKey()) {
        sql << " AND "
            << qualified(table_info(comparison.column.table()).name, comparison.column.uniqueName())
            << " IS NULL";
    }
    return sql << ")";
}

SqlText id_condition(const ColumnComparison& comparison)
{
    const SqlText id = qualified(table_info(comparison.column.table()).name, "id");
    SqlText sql;
    if (comparison.ids->isStatement && comparison.isLookedUp) {
        return sql << "(EXISTS (SELECT 1 FROM (" << comparison.ids->sql
                   << ") AS selected WHERE selected.id = " << id << "))";
    }
    return sql << "(" << id << " IN (" << comparison.ids->sql << "))";
}

SqlText comparison_sql(const ColumnComparison& comparison, DBIF_Connection& connection)
{
    SqlText sql;
    const TableInfo& f = table_info(comparison.column.table());
    if (comparison.comparator == IS_NULL) {
        return absence_condition(comparison, connection);
    }
    if (comparison.ids.has_value()) {
        return id_condition(comparison);
    }
    if (comparison.column.isKey()) {
        return key_condition(comparison, connection);
    }
    return sql << "("
               << value_condition(
                      qualified(f.name, comparison.column.uniqueName()), comparison,
                      connection.dialect())
               << ")";
}

SqlText balanced(std::span<const SqlText> parts, bool isAnd)
{
    if (parts.size() == 1) {
        return parts.front();
    }
    const std::size_t half = parts.size() / 2;
    SqlText sql;
    return sql << "(" << balanced(parts.first(half), isAnd)
               << (isAnd ? SqlText(" AND ") : SqlText(" OR "))
               << balanced(parts.subspan(half), isAnd) << ")";
}

/// Deeper trees do not fit a database's parser as nested AND and OR; SQLite's gives up at 30.
constexpr std::size_t kGreatestNesting = 10;

/// A deep tree as a flat list of decisions: what stands beside its largest part decides first, then
/// what stands beside the largest part of that, and so on. What is nested in the list is at most
/// half as large each time.
SqlText decision_list(ConditionTree tree, DBIF_Connection& connection)
{
    SqlText sql = "((CASE";
    while (tree.kind() == ConditionTree::Kind::And || tree.kind() == ConditionTree::Kind::Or) {
        const bool isAnd = tree.kind() == ConditionTree::Kind::And;
        std::vector<ConditionTree> parts = tree.operands();
        const auto largest = std::max_element(
            parts.begin(), parts.end(),
            [](const ConditionTree& a, const ConditionTree& b) { return a.size() < b.size(); });
        tree = *largest;
        parts.erase(largest);
        const ConditionTree others = ConditionTree::joined(
            isAnd ? ConditionTree::Kind::And : ConditionTree::Kind::Or, parts);
        sql << "\nWHEN " << criteria(others, connection)
            << (isAnd ? SqlText(" IS NOT TRUE THEN 0") : SqlText(" THEN 1"));
    }
    return sql << "\nELSE " << criteria(tree, connection) << " END) = 1)";
}
} // namespace

SqlText criteria(const ConditionTree& tree, DBIF_Connection connection)
{
    switch (tree.kind()) {
    case ConditionTree::Kind::True:
        return SqlText("(1 = 1)");
    case ConditionTree::Kind::False:
        return SqlText("(1 = 0)");
    case ConditionTree::Kind::Comparison:
        return comparison_sql(tree.comparison(), connection);
    case ConditionTree::Kind::And:
    case ConditionTree::Kind::Or:
        break;
    }
    if (tree.depth() > kGreatestNesting) {
        return decision_list(tree, connection);
    }
    std::vector<SqlText> parts;
    for (const ConditionTree& operand : tree.operands()) {
        parts.push_back(criteria(operand, connection));
    }
    return balanced(parts, tree.kind() == ConditionTree::Kind::And);
}

SqlText records_with_key(
    const SqlText& expression,
    const ColumnComparison& comparison,
    DBIF_Connection& connection)
{
    const TableInfo& f = table_info(comparison.column.table());
    const bool isOnPoints = comparison.isOnPoints();
    const int definition = definition_id(connection, comparison.column);
    SqlText sql;
    sql << "SELECT " << expression << " FROM "
        << SqlName(isOnPoints ? f.associationTable() : f.dataTable()) << " WHERE "
        << SqlName(f.columnLink()) << " = " << definition;
    if (comparison.comparator == NOT_NULL || (isOnPoints && !comparison.holdsNumbers)) {
        return sql;
    }
    const SqlDialect& dialect = connection.dialect();
    sql << " AND (";
    if (isOnPoints) {
        sql << bounds_condition(comparison.ranges, dialect);
    } else {
        sql << value_condition(
            comparison.holdsNumbers ? SqlText("number") : SqlText("text"), comparison, dialect);
    }
    return sql << ")";
}
} // namespace dbif
