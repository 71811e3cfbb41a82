#include "dbif/condition/column_condition.h"

#include "dbif/condition/condition_tree.h"
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

bool takes_values_of_list(Comparator comparator)
{
    return is_list(comparator) || comparator == EQUAL || comparator == NOT_EQUAL;
}

std::size_t behind_blanks(std::string_view text, std::size_t at)
{
    return std::min(text.find_first_not_of(kBlanks, at), text.size());
}

/// The length of the separator between two texts that begins at this quote: a quote, blanks, a
/// comma, blanks, a quote; 0 when there is none.
std::size_t separator_length(std::string_view list, std::size_t quote)
{
    const std::size_t comma = behind_blanks(list, quote + 1);
    if (comma == list.size() || list[comma] != ',') {
        return 0;
    }
    const std::size_t next = behind_blanks(list, comma + 1);
    return next < list.size() && list[next] == '\'' ? next + 1 - quote : 0;
}

/// The texts of "a', 'b": the outer quotes of a list are gone already.
std::vector<std::string> listed_texts(std::string_view list)
{
    std::vector<std::string> texts;
    std::size_t start = 0;
    for (std::size_t quote = list.find('\''); quote != std::string_view::npos;) {
        const std::size_t length = separator_length(list, quote);
        if (length > 0) {
            texts.emplace_back(list.substr(start, quote - start));
            start = quote + length;
        }
        quote = list.find('\'', length > 0 ? start : quote + 1);
    }
    texts.emplace_back(list.substr(start));
    return texts;
}

/// Tells whether a comma that should have separated this text from a neighbour is left in it.
bool keeps_separator(std::string_view text)
{
    const std::size_t first = behind_blanks(text, 0);
    if (first < text.size() && text[first] == ',') {
        const std::size_t next = behind_blanks(text, first + 1);
        return next == text.size() || text[next] == '\'';
    }
    const std::string beginning = dbif::trimmed(text);
    return beginning.ends_with(',') &&
           dbif::trimmed(beginning.substr(0, beginning.size() - 1)).ends_with('\'');
}

/// A list with blanks or commas behind its last quote comes with its outer quotes, as "'a', 'b', ".
/// Takes both off.
std::string without_dangling_end(const std::string& list)
{
    const std::size_t end = list.find_last_not_of(std::string(kBlanks) + ",") + 1;
    const bool dangles = end > 0 && end < list.size() && list.find(',') != std::string::npos;
    if (!dangles || list.front() != '\'' || list[end - 1] != '\'') {
        return list;
    }
    return end == 1 ? std::string() : list.substr(1, end - 2);
}

std::vector<std::string> listed_numbers(const std::string& list)
{
    std::vector<std::string> numbers;
    std::size_t start = 0;
    for (std::size_t end = 0; end != std::string::npos; start = end + 1) {
        end = list.find(',', start);
        numbers.push_back(list.substr(start, end == std::string::npos ? end : end - start));
    }
    return numbers;
}

std::string without_quotes(const std::string& given)
{
    std::string text = dbif::trimmed(given);
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

double number_of(const std::string& text, const ColumnComparison& comparison)
{
    const double number = dbif::read_engineering_number(text);
    if (std::isnan(number) || std::isinf(number)) {
        dbif::throw_error(
            "The column \"" + display_name(comparison.column) + "\" holds numbers, and \"" + text +
                "\" is not a number. Write a number such as 0.13u, 1e-6 or 25.",
            __FILE__, __LINE__);
    }
    return number;
}

/// Finds the column that a host names by two texts; throws when there is none.
dbif::TableColumn named_column(const QString& table, const QString& column)
{
    const auto found = dbif::find_column(dbif::to_utf8(table), dbif::to_utf8(column));
    if (!found.has_value()) {
        dbif::throw_error(
            "There is no column \"" + dbif::to_utf8(column) + "\" of a table \"" +
                dbif::to_utf8(table) + "\" to compare.",
            __FILE__, __LINE__);
    }
    return *found;
}

void set_numbers(const std::string& value, double tolerance, ColumnComparison* comparison)
{
    std::vector<double> numbers;
    if (comparison->comparator != NOT_NULL && comparison->comparator != IS_NULL) {
        const auto pieces = is_list(comparison->comparator) ? listed_numbers(value)
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
    const dbif::ValueKind kind = comparison->column.kind();
    if ((kind == dbif::ValueKind::Complex || kind == dbif::ValueKind::Matrix) &&
        is_ordering(comparison->comparator)) {
        dbif::throw_error(
            "The column \"" + display_name(comparison->column) +
                "\" holds complex values, which have no order. Compare it with = or !=.",
            __FILE__, __LINE__);
    }
    comparison->texts =
        is_list(comparison->comparator) ? listed_texts(value) : std::vector<std::string>{value};
    if (is_list(comparison->comparator) &&
        std::any_of(comparison->texts.begin(), comparison->texts.end(), keeps_separator)) {
        dbif::throw_error(
            "The column \"" + display_name(comparison->column) +
                "\" cannot be compared with the list \"" + value +
                "\": a comma or a single quote is left over. Write 'first text', 'second text'.",
            __FILE__, __LINE__);
    }
    std::sort(comparison->texts.begin(), comparison->texts.end());
}

std::shared_ptr<const ColumnComparison> make_comparison(
    dbif::TableColumn column,
    Comparator comparator,
    const std::string& given,
    bool holdsNumbers,
    double tolerance)
{
    auto comparison = std::make_shared<ColumnComparison>(std::move(column));
    comparison->comparator = comparator;
    const std::string value =
        takes_values_of_list(comparator) ? without_dangling_end(given) : given;
    if (holdsNumbers) {
        set_numbers(value, tolerance, comparison.get());
    } else {
        set_texts(value, comparison.get());
    }
    return comparison;
}

/// The relative distance within which values of a column are equal: ids are compared exactly.
double tolerance_of(const dbif::TableColumn& column)
{
    const bool isId = !column.isKey() && column.fixed().kind == dbif::FixedKind::Id;
    return isId ? 0.0 : dbif::ColumnTraits().tolerance;
}
} // namespace

DBIF_SingleColumnCondition::DBIF_SingleColumnCondition(
    const dbif::TableColumn& column,
    Comparator comparator,
    const std::string& value)
    : comparison_(make_comparison(
          column,
          comparator,
          value,
          column.kind() == dbif::ValueKind::Double,
          tolerance_of(column)))
{}

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
    : comparison_(make_comparison(
          named_column(table, column),
          comparator,
          dbif::to_utf8(value),
          holdsNumbers,
          isApproximate ? tolerance : 0.0))
// NOLINTEND(performance-unnecessary-value-param)
{}

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
