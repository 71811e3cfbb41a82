#include "dbif/result_column.h"

#include "dbif/complex_values.h"
#include "dbif/host_number.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;
using Row = std::uint32_t;

std::string integer_text(double number)
{
    return std::to_string(static_cast<long long>(number));
}

/// -1, 0 or 1; NaN comes first and equals itself.
int order_of(double a, double b)
{
    if (a < b) {
        return -1;
    }
    if (a > b) {
        return 1;
    }
    return static_cast<int>(std::isnan(b)) - static_cast<int>(std::isnan(a));
}

int order_of(std::complex<double> a, std::complex<double> b)
{
    const int byReal = order_of(a.real(), b.real());
    return byReal != 0 ? byReal : order_of(a.imag(), b.imag());
}

int order_of(const std::string& a, const std::string& b)
{
    return a.compare(b);
}

int order_of(std::uint32_t a, std::uint32_t b)
{
    return static_cast<int>(a > b) - static_cast<int>(a < b);
}

/// Calls `use` with the vector that holds the column's values.
template <typename Column, typename Use>
auto with_values(Column& column, const Use& use)
{
    switch (column.kind) {
    case Kind::Integer:
    case Kind::Double:
        return use(column.numbers);
    case Kind::Complex:
        return use(column.complexNumbers);
    case Kind::SharedText:
        return use(column.codes);
    case Kind::Text:
        break;
    }
    return use(column.texts);
}

/// Puts the dictionary into order, so that its places compare as the texts do.
void order_dictionary(ResultColumn* column)
{
    std::vector<Row> places(column->dictionary.size());
    std::iota(places.begin(), places.end(), Row(0));
    std::sort(places.begin(), places.end(), [column](Row a, Row b) {
        return column->dictionary[a] < column->dictionary[b];
    });
    std::vector<Row> rank(places.size());
    std::vector<std::string> ordered;
    for (const Row place : places) {
        if (ordered.empty() || ordered.back() != column->dictionary[place]) {
            ordered.push_back(column->dictionary[place]);
        }
        rank[place] = static_cast<Row>(ordered.size() - 1);
    }
    for (Row& code : column->codes) {
        code = rank[code];
    }
    column->dictionary = std::move(ordered);
}

void sort_single(bool isAscending, ResultColumn* column)
{
    with_values(*column, [isAscending](auto& values) {
        const auto isBefore = [](const auto& a, const auto& b) {
            return order_of(a, b) < 0;
        };
        if (!std::is_sorted(values.begin(), values.end(), isBefore)) {
            std::sort(values.begin(), values.end(), isBefore);
        }
        if (!isAscending) {
            std::reverse(values.begin(), values.end());
        }
    });
}

int order_of_rows(const ResultColumn& column, Row a, Row b)
{
    return with_values(
        column, [a, b](const auto& values) { return order_of(values[a], values[b]); });
}

/// Moves values to their places cycle by cycle, so that no second column is needed. `order[i]` is
/// the row that belongs at i.
template <typename T>
void apply_order(std::vector<Row> order, std::vector<T>* values)
{
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (order[start] == start) {
            continue;
        }
        T first = std::move((*values)[start]);
        std::size_t at = start;
        while (order[at] != start) {
            const std::size_t from = order[at];
            (*values)[at] = std::move((*values)[from]);
            order[at] = static_cast<Row>(at);
            at = from;
        }
        (*values)[at] = std::move(first);
        order[at] = static_cast<Row>(at);
    }
}

void keep_first(std::size_t count, ResultColumn* column)
{
    with_values(*column, [count](auto& values) { values.resize(std::min(count, values.size())); });
}
} // namespace

std::size_t ResultColumn::size() const
{
    return with_values(*this, [](const auto& values) { return values.size(); });
}

std::string ResultColumn::text(std::size_t row) const
{
    switch (kind) {
    case Kind::Integer:
        return std::isnan(numbers[row]) ? std::string() : integer_text(numbers[row]);
    case Kind::Double:
        return std::isnan(numbers[row]) ? std::string() : double_text(numbers[row]);
    case Kind::Complex:
        return complex_text(complexNumbers[row]);
    case Kind::SharedText:
        return dictionary[codes[row]];
    case Kind::Text:
        break;
    }
    return texts[row];
}

void ResultColumn::reserve(std::size_t rows)
{
    with_values(*this, [rows](auto& values) { values.reserve(rows); });
}

void ResultColumn::keepRows(const std::vector<bool>& isKept)
{
    with_values(*this, [&isKept](auto& values) {
        std::size_t kept = 0;
        for (std::size_t row = 0; row < values.size(); ++row) {
            if (!isKept[row]) {
                continue;
            }
            if (kept != row) {
                values[kept] = std::move(values[row]);
            }
            ++kept;
        }
        values.resize(kept);
    });
}

void sort_rows(const std::vector<SortKey>& keys, QueryResult* result)
{
    for (const SortKey& key : keys) {
        if (result->columns[key.column].kind == Kind::SharedText) {
            order_dictionary(&result->columns[key.column]);
        }
    }
    if (keys.empty()) {
        return;
    }
    if (result->columns.size() == 1) {
        sort_single(keys.front().isAscending, &result->columns.front());
        return;
    }
    std::vector<Row> order(result->rows);
    std::iota(order.begin(), order.end(), Row(0));
    const auto isBefore = [&](Row a, Row b) {
        for (const SortKey& key : keys) {
            const int by = order_of_rows(result->columns[key.column], a, b);
            if (by != 0) {
                return key.isAscending ? by < 0 : by > 0;
            }
        }
        // Equal rows keep their order.
        return a < b;
    };
    if (std::is_sorted(order.begin(), order.end(), isBefore)) {
        return;
    }
    std::sort(order.begin(), order.end(), isBefore);
    for (ResultColumn& column : result->columns) {
        with_values(column, [&order](auto& values) { apply_order(order, &values); });
    }
}

void remove_repeated_rows(QueryResult* result)
{
    std::size_t kept = 0;
    for (Row row = 0; row < result->rows; ++row) {
        const bool isRepeated =
            kept > 0 &&
            std::all_of(result->columns.begin(), result->columns.end(), [&](const auto& column) {
                return order_of_rows(column, static_cast<Row>(kept - 1), row) == 0;
            });
        if (isRepeated) {
            continue;
        }
        if (kept != row) {
            for (ResultColumn& column : result->columns) {
                with_values(column, [&](auto& values) { values[kept] = std::move(values[row]); });
            }
        }
        ++kept;
    }
    keep_first_rows(kept, result);
}

void keep_first_rows(std::size_t count, QueryResult* result)
{
    if (count >= result->rows) {
        return;
    }
    for (ResultColumn& column : result->columns) {
        keep_first(count, &column);
    }
    result->rows = count;
}

namespace {
/// Formats a column of numbers; sorted columns repeat values, and those are formatted once.
template <typename T, typename Format>
std::vector<std::string> formatted(const std::vector<T>& values, const Format& format)
{
    std::vector<std::string> texts;
    texts.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0 && values[i] == values[i - 1]) {
            texts.push_back(texts.back());
        } else {
            texts.push_back(format(i));
        }
    }
    return texts;
}
} // namespace

std::vector<std::string> take_texts(ResultColumn* column)
{
    ResultColumn taken = std::move(*column);
    *column = ResultColumn();
    const auto format = [&taken](std::size_t row) {
        return taken.text(row);
    };
    switch (taken.kind) {
    case Kind::Integer:
    case Kind::Double:
        return formatted(taken.numbers, format);
    case Kind::Complex:
        return formatted(taken.complexNumbers, format);
    case Kind::SharedText:
        return formatted(taken.codes, format);
    case Kind::Text:
        break;
    }
    return std::move(taken.texts);
}
} // namespace dbif
