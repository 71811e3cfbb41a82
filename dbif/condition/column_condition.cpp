#include "dbif/condition/column_condition.h"

#include "dbif/condition/condition_tree.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <cmath>

namespace {
using dbif::ColumnComparison;

bool is_ordering(Comparator comparator)
{
    return comparator == LESS || comparator == LESS_EQUAL || comparator == GREATER ||
           comparator == GREATER_EQUAL;
}

bool is_list(Comparator comparator)
{
    return comparator == IN || comparator == NOT_IN;
}

/// A list reaches a condition as "a', 'b": its outer quotes are gone already.
std::vector<std::string> list_values(const std::string& list, std::string_view separator)
{
    std::vector<std::string> values;
    std::size_t start = 0;
    for (std::size_t end = 0; end != std::string::npos; start = end + separator.size()) {
        end = list.find(separator, start);
        values.push_back(list.substr(start, end == std::string::npos ? end : end - start));
    }
    return values;
}

std::string without_quotes(const std::string& given)
{
    std::string text = dbif::trimmed(given);
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

/// What an error calls the column: "device.name" or "device key W".
std::string display_name(const ColumnComparison& comparison)
{
    const std::string table(dbif::facts(comparison.table).name);
    if (!comparison.isKey) {
        return table + "." + comparison.column;
    }
    const auto parts = dbif::split_column_key(comparison.column);
    return table + " key " + (parts.has_value() ? parts->name : comparison.column);
}

double number_of(const std::string& text, const ColumnComparison& comparison)
{
    const double number = dbif::read_engineering_number(text);
    if (std::isnan(number) || std::isinf(number)) {
        dbif::throw_error(
            "The column \"" + display_name(comparison) + "\" holds numbers, and \"" + text +
                "\" is not a number. Write a number such as 0.13u, 1e-6 or 25.",
            __FILE__, __LINE__);
    }
    return number;
}

/// Finds the table; throws when there is none of that name.
void set_column(const QString& table, const QString& column, ColumnComparison* comparison)
{
    const std::string name = dbif::to_utf8(table);
    const dbif::TableFacts* keyed = dbif::find_data_table(name);
    const dbif::TableFacts* found = keyed != nullptr ? keyed : dbif::find_table(name);
    if (found == nullptr) {
        dbif::throw_error(
            "There is no record table \"" + name + "\" to compare a column of.", __FILE__,
            __LINE__);
    }
    comparison->table = found->table;
    comparison->isKey = keyed != nullptr;
    comparison->column = dbif::to_utf8(column);
}

void set_numbers(const std::string& value, double tolerance, ColumnComparison* comparison)
{
    std::vector<double> numbers;
    if (comparison->comparator != NOT_NULL && comparison->comparator != IS_NULL) {
        const auto pieces = is_list(comparison->comparator) ? list_values(value, ",")
                                                            : std::vector<std::string>{value};
        for (const std::string& piece : pieces) {
            std::string text = without_quotes(piece);
            text.erase(std::remove(text.begin(), text.end(), '\''), text.end());
            numbers.push_back(number_of(text, *comparison));
        }
    }
    comparison->holdsNumbers = true;
    comparison->ranges = dbif::ranges_of(comparison->comparator, numbers, tolerance);
}

void set_texts(const std::string& value, ColumnComparison* comparison)
{
    if (comparison->isKey && is_ordering(comparison->comparator)) {
        const auto parts = dbif::split_column_key(comparison->column);
        if (parts.has_value() && parts->kind != dbif::ValueKind::Text) {
            dbif::throw_error(
                "The column \"" + display_name(*comparison) +
                    "\" holds complex values, which have no order. Compare it with = or !=.",
                __FILE__, __LINE__);
        }
    }
    comparison->texts = is_list(comparison->comparator) ? list_values(value, "', '")
                                                        : std::vector<std::string>{value};
    std::sort(comparison->texts.begin(), comparison->texts.end());
}
} // namespace

// NOLINTBEGIN(performance-unnecessary-value-param): a published signature
DBIF_SingleColumnCondition::DBIF_SingleColumnCondition(
    QString table,
    QString column,
    Comparator comparator,
    QString value,
    bool holdsNumbers,
    bool isApproximate,
    double tolerance,
    double /*epsilon*/)
// NOLINTEND(performance-unnecessary-value-param)
{
    auto comparison = std::make_shared<ColumnComparison>();
    set_column(table, column, comparison.get());
    comparison->comparator = comparator;
    const std::string text = dbif::to_utf8(value);
    if (holdsNumbers) {
        set_numbers(text, isApproximate ? tolerance : 0.0, comparison.get());
    } else {
        set_texts(text, comparison.get());
    }
    comparison_ = std::move(comparison);
}

DBIF_SingleColumnCondition::DBIF_SingleColumnCondition(
    QString table,
    QString column,
    Comparator comparator,
    int value,
    bool holdsNumbers,
    bool isApproximate,
    double tolerance,
    double epsilon)
    : DBIF_SingleColumnCondition(
          std::move(table),
          std::move(column),
          comparator,
          QString::number(value),
          holdsNumbers,
          isApproximate,
          tolerance,
          epsilon)
{}

DBIF_SingleColumnCondition* DBIF_SingleColumnCondition::clone() const
{
    return new DBIF_SingleColumnCondition(*this);
}

dbif::ConditionTree DBIF_SingleColumnCondition::tree(bool negated) const
{
    return dbif::ConditionTree::comparison(negated ? comparison_->negated() : *comparison_);
}
