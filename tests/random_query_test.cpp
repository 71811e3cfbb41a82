#include "dbif/condition/column_condition.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/vanto_query.h"

#include "tests/support/random_records.h"

#include <QSqlQuery>

#include <algorithm>
#include <cstdlib>

using namespace test_support; // NOLINT(google-build-using-namespace)

// Random databases, random conditions, random columns: a query gives what a plain evaluation over
// the same records in memory gives.
namespace {
using Texts = std::vector<std::string>;

/// A condition as the library has it, as a plain function (of its negation when told so), and for
/// people.
struct Condition
{
    std::shared_ptr<const DBIF_QueryCondition> real;
    std::function<bool(const ModelPlace& place, bool isNegated)> plain;
    std::string text;
    bool looksAtPoints = false;
};

double number_of(const std::string& text)
{
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return *end == 'u' ? number * 1e-6 : number;
}

/// -1, 0 or 1. Numbers are equal within 1e-10 of what they are compared with; ids are not.
int compare(const ModelColumn& column, const ModelValue& value, const std::string& with)
{
    if (column.kind != ValueKind::Double) {
        const int order = value.text.compare(with);
        return order < 0 ? -1 : static_cast<int>(order > 0);
    }
    const double x = value.number.real();
    const double v = number_of(with);
    const bool isEqual = x == v || (column.name != "id" && std::abs(x - v) <= 1e-10 * std::abs(v));
    return isEqual ? 0 : x < v ? -1 : 1;
}

bool holds(
    const ModelColumn& column,
    Comparator comparator,
    const Texts& with,
    const ModelValue& value)
{
    const int order = with.empty() ? 0 : compare(column, value, with.front());
    const bool isInList = std::any_of(with.begin(), with.end(), [&](const std::string& one) {
        return compare(column, value, one) == 0;
    });
    switch (comparator) {
    case EQUAL:
    case IN:
        return isInList;
    case NOT_EQUAL:
    case NOT_IN:
        return !isInList;
    case LESS:
        return order < 0;
    case LESS_EQUAL:
        return order <= 0;
    case GREATER:
        return order > 0;
    case GREATER_EQUAL:
        return order >= 0;
    default:
        return true;
    }
}

QString table_of(const ModelColumn& column)
{
    const dbif::TableInfo& f = dbif::table_info(column.table);
    return dbif::to_qt(column.isKey() ? f.dataTable() : std::string(f.name));
}

Condition comparison(const ModelColumn& column, Comparator comparator, const Texts& with)
{
    static const char* const kSigns[] = {"=",  "!=",      "<", "<=", ">",
                                         ">=", "NOTNULL", "",  "IN", "NOTIN"};
    std::string list;
    for (const std::string& value : with) {
        list += (&value == &with.front() ? "" : "', '") + value;
    }
    Condition condition;
    condition.real = std::make_shared<DBIF_SingleColumnCondition>(
        table_of(column), dbif::to_qt(column.name), comparator, dbif::to_qt(list),
        column.kind == ValueKind::Double, column.name != "id", 1e-10, 0.0);
    condition.plain = [=](const ModelPlace& place, bool isNegated) {
        const ModelCell cell = column.cell(place);
        if (!cell) {
            // What is absent makes no comparison true. A record or point can be without a value.
            return comparator == NOT_NULL && isNegated && column.isAt(place);
        }
        return holds(column, comparator, with, *cell) != isNegated;
    };
    condition.text = dbif::to_utf8(table_of(column)) + "." + column.name + " " +
                     kSigns[comparator] + " '" + list + "'";
    condition.looksAtPoints = column.isOnPoints();
    return condition;
}

Condition random_comparison(Dice& dice, const ModelColumn& column)
{
    static const Texts kNumbers{"0", "1", "-2", "1.2", "0.13u", "25", "7", "1e300", "-0.0"};
    static const Texts kTexts{"", "a", "A", "a ", "b'c", "ü", "10", "zzz"};
    static const Texts kComplexNumbers{"1.5-2j", "-1+0j", "1.5"};
    // Complex numbers have no order.
    static const Comparator kComparators[] = {EQUAL, NOT_EQUAL,  IN,      NOT_IN,       NOT_NULL,
                                              LESS,  LESS_EQUAL, GREATER, GREATER_EQUAL};
    const Comparator comparator =
        kComparators[dice.below(column.kind == ValueKind::Complex ? 5 : 9)];
    const Texts& values = column.kind == ValueKind::Double    ? kNumbers
                          : column.kind == ValueKind::Complex ? kComplexNumbers
                                                              : kTexts;
    const bool isList = comparator == IN || comparator == NOT_IN;
    const std::size_t count = !isList ? 1 : dice.chance(15) ? 40 : 1 + dice.below(3);
    Texts with;
    for (std::size_t i = 0; i < count && comparator != NOT_NULL; ++i) {
        with.push_back(column.name == "id" ? std::to_string(dice.below(12)) : dice.of(values));
        if (column.kind == ValueKind::Double && i > 8) {
            with.back() = std::to_string(i);
        }
    }
    return comparison(column, comparator, with);
}

Condition random_comparison(Dice& dice)
{
    return random_comparison(dice, dice.of(random_columns()));
}

Condition joined(const Condition& left, Operator op, const Condition& right)
{
    return {
        std::make_shared<DBIF_CompoundQueryCondition>(left.real.get(), op, right.real.get()),
        [=](const ModelPlace& place, bool isNegated) {
            return (op == AND) != isNegated
                       ? left.plain(place, isNegated) && right.plain(place, isNegated)
                       : left.plain(place, isNegated) || right.plain(place, isNegated);
        },
        "(" + left.text + (op == AND ? " AND " : " OR ") + right.text + ")",
        left.looksAtPoints || right.looksAtPoints};
}

/// Several comparisons of one column, as for a range.
Condition random_comparisons(Dice& dice, Operator op)
{
    const ModelColumn& column = dice.of(random_columns());
    Condition condition = random_comparison(dice, column);
    for (std::size_t i = 1 + dice.below(2); i > 0; --i) {
        condition = joined(condition, op, random_comparison(dice, column));
    }
    return condition;
}

Condition random_condition(Dice& dice, std::size_t depth)
{
    const std::size_t choice = dice.below(depth == 0 ? 30 : 100);
    if (choice == 0) {
        const bool value = dice.chance(50);
        return {
            std::make_shared<DBIF_BooleanQueryCondition>(value),
            [value](const ModelPlace&, bool isNegated) { return value != isNegated; },
            value ? "TRUE" : "FALSE"};
    }
    if (choice < 30) {
        return random_comparison(dice);
    }
    if (choice < 40) {
        return random_comparisons(dice, dice.chance(70) ? AND : OR);
    }
    const Condition first = random_condition(dice, depth - 1);
    if (choice >= 90) {
        return {
            std::make_shared<DBIF_CompoundQueryCondition>(NOT, first.real.get()),
            [plain = first.plain](const ModelPlace& place, bool isNegated) {
                return plain(place, !isNegated);
            },
            "NOT " + first.text, first.looksAtPoints};
    }
    return joined(first, choice < 65 ? AND : OR, random_condition(dice, depth - 1));
}

/// AND and OR within each other, deeper than a database's parser takes them.
Condition deep_condition(Dice& dice)
{
    Condition condition = random_comparison(dice);
    for (std::size_t i = 15 + dice.below(50); i > 0; --i) {
        const Condition next = random_condition(dice, dice.below(2));
        const Operator op = i % 2 == 0 ? AND : OR;
        condition = dice.chance(50) ? joined(condition, op, next) : joined(next, op, condition);
    }
    return condition;
}

ModelQuery random_query(Dice& dice, const RandomRecords& records)
{
    ModelQuery query;
    const std::size_t count = dice.chance(40) ? 1 : 2 + dice.below(3);
    while (query.columns.size() < count) {
        if (const ModelColumn& column = dice.of(random_columns()); records.has(column)) {
            query.columns.push_back(column);
        }
    }
    const std::size_t ordered = dice.chance(70) ? count : dice.below(count);
    for (std::size_t i = 0; i < ordered; ++i) {
        query.orders.push_back({i, dice.chance(80)});
    }
    query.isDistinct = dice.chance(40);
    query.latestOnly = dice.chance(50);
    query.limit = ordered == count && dice.chance(10) ? static_cast<int>(dice.below(6)) : -1;
    return query;
}

DBIF_VantoQuery
real_query(const DBIF_Connection& connection, const ModelQuery& query, const Condition& condition)
{
    DBIF_VantoQuery real(connection);
    for (const ModelColumn& column : query.columns) {
        real.addColumn(table_of(column), dbif::to_qt(column.name), false);
    }
    for (const ModelQuery::Order& order : query.orders) {
        const ModelColumn& column = query.columns[order.column];
        real.addOrder(table_of(column), dbif::to_qt(column.name), order.isAscending);
    }
    real.setCondition(condition.real.get());
    real.markDistinct(query.isDistinct);
    real.markLatestOnly(query.latestOnly);
    real.setLimit(query.limit);
    return real;
}

ModelRows rows_of(const dbif::QueryResult& result)
{
    ModelRows rows(result.rows);
    for (const dbif::ResultColumn& column : result.columns) {
        for (std::size_t row = 0; row < result.rows; ++row) {
            rows[row].push_back(column.text(row));
        }
    }
    return rows;
}

/// Rows that are equal by the query's order may come in any order.
void expect_equal_rows(const ModelQuery& query, ModelRows found, ModelRows expected)
{
    const auto ordered = [&query](const ModelRows& rows) {
        ModelRows cells(rows.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (const ModelQuery::Order& order : query.orders) {
                cells[row].push_back(rows[row][order.column]);
            }
        }
        return cells;
    };
    EXPECT_EQ(ordered(found), ordered(expected));
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);
}

std::vector<int> selected_ids(DBIF_Connection connection, RecordTable table, DBIF_VantoQuery select)
{
    const QString name = dbif::to_qt(dbif::table_info(table).name);
    select.addColumn(name, QStringLiteral("id"), true);
    const QString sql = select.generateSql(false);
    const QString all = QStringLiteral("SELECT id FROM ") + name;
    QSqlQuery rows = connection.query(sql.isEmpty() ? all : sql, 0, __FILE__, __LINE__);
    std::set<int> ids;
    while (rows.next()) {
        ids.insert(rows.value(0).toInt());
    }
    return {ids.begin(), ids.end()};
}

void check(
    DBIF_Connection connection,
    const RecordModel& model,
    const ModelQuery& query,
    const Condition& condition)
{
    const DBIF_VantoQuery real = real_query(connection, query, condition);
    const ModelRows found = rows_of(dbif::run_query(real));
    expect_equal_rows(query, found, model.rows(query));
    if (query.columns.size() == 1) {
        ModelRows texts;
        dbif::QueryResult result = dbif::run_query(real);
        for (const std::string& text : dbif::take_texts(&result.columns.front())) {
            texts.push_back({text});
        }
        EXPECT_EQ(texts, found);
    }

    const RecordTable table = query.columns.front().table;
    const std::vector<int> ids = model.ids(table, query);
    EXPECT_EQ(dbif::matching_ids(connection, table, condition.real.get(), query.latestOnly), ids);
    // Plain SQL cannot decide on points, but leaves out nothing.
    ModelQuery bare;
    bare.latestOnly = query.latestOnly;
    const std::vector<int> selected =
        selected_ids(connection, table, real_query(connection, bare, condition));
    if (condition.looksAtPoints) {
        EXPECT_TRUE(std::includes(selected.begin(), selected.end(), ids.begin(), ids.end()));
    } else {
        EXPECT_EQ(selected, ids);
    }
}

/// The number of databases that are tried: few in every run of the suite, as many as the
/// environment says in a long one.
unsigned seeds(unsigned usual)
{
    const char* given = std::getenv("DBAPI_RANDOM_SEEDS");
    return given == nullptr ? usual : static_cast<unsigned>(std::atoi(given));
}

class RandomQuery : public testing::TestWithParam<Engine>
{};
} // namespace

TEST_P(RandomQuery, AgreesWithPlainEvaluation)
{
    const bool isServer = GetParam() == Engine::MariaDb;
    for (unsigned seed = 1; seed <= seeds(isServer ? 2 : 10); ++seed) {
        Dice dice(seed);
        MeasurementDatabase database(GetParam());
        RandomRecords records(database.connection, dice);
        for (int i = 0; i < (isServer ? 200 : 400) && !HasFailure(); ++i) {
            if (i % (isServer ? 50 : 100) == 0) {
                records.import();
            }
            ModelQuery query = random_query(dice, records);
            const Condition condition =
                dice.chance(3) ? deep_condition(dice) : random_condition(dice, dice.below(4));
            query.condition = [&condition](const ModelPlace& place) {
                return condition.plain(place, false);
            };
            SCOPED_TRACE(
                "seed " + std::to_string(seed) + ", query " + std::to_string(i) + ": " +
                condition.text + "\n" +
                dbif::to_utf8(real_query(database.connection, query, condition).generateSql(true)));
            check(database.connection, records.model(), query, condition);
        }
    }
}

INSTANTIATE_ON_ENGINES(RandomQuery);
