#include "dbif/row_order.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;
using Row = std::uint32_t;

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

/// A number that orders as the value does, as far as 64 bits tell: all of it for numbers and codes,
/// the real part of complex numbers, the first eight bytes of texts.
std::uint64_t rank_of(double number)
{
    constexpr std::uint64_t kSign = std::uint64_t(1) << 63U;
    if (std::isnan(number)) {
        return 0;
    }
    // Both zeros are equal.
    const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

std::uint64_t rank_of(std::complex<double> number)
{
    return rank_of(number.real());
}

std::uint64_t rank_of(Row code)
{
    return code;
}

std::uint64_t rank_of(const std::string& text)
{
    std::uint64_t rank = 0;
    for (std::size_t i = 0; i < sizeof(rank); ++i) {
        rank = rank << 8U | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return rank;
}

/// A row while the rows are sorted by one column.
struct RankedRow
{
    std::uint64_t rank;
    Row row;
};

/// Sorts rows column by column: first by the first, then each run of equal rows by the next. The
/// numbers that are compared stand side by side, which is several times as fast as comparing
/// through the columns.
class RowSorter
{
public:
    RowSorter(const std::vector<SortKey>& keys, const QueryResult& result)
        : keys_(keys), result_(result)
    {}

    void sort(std::span<RankedRow> rows, std::size_t level) const
    {
        const SortKey& key = keys_[level];
        const ResultColumn& column = result_.columns[key.column];
        with_values(column, [&](const auto& values) {
            for (RankedRow& row : rows) {
                row.rank = key.isAscending ? rank_of(values[row.row]) : ~rank_of(values[row.row]);
            }
        });
        const bool isExact = column.kind != Kind::Text && column.kind != Kind::Complex;
        const auto order = [&](const RankedRow& a, const RankedRow& b) {
            if (a.rank != b.rank) {
                return a.rank < b.rank ? -1 : 1;
            }
            const int by = isExact ? 0 : order_of_rows(column, a.row, b.row);
            return key.isAscending ? by : -by;
        };
        // Equal rows keep their order.
        std::sort(rows.begin(), rows.end(), [&order](const RankedRow& a, const RankedRow& b) {
            const int by = order(a, b);
            return by != 0 ? by < 0 : a.row < b.row;
        });
        if (level + 1 == keys_.size()) {
            return;
        }
        for (std::size_t start = 0; start < rows.size();) {
            std::size_t end = start + 1;
            while (end < rows.size() && order(rows[start], rows[end]) == 0) {
                ++end;
            }
            if (end - start > 1) {
                sort(rows.subspan(start, end - start), level + 1);
            }
            start = end;
        }
    }

private:
    const std::vector<SortKey>& keys_;
    const QueryResult& result_;
};
} // namespace

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
    std::vector<RankedRow> rows(result->rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = {0, static_cast<Row>(i)};
    }
    RowSorter(keys, *result).sort(rows, 0);
    std::vector<Row> order(rows.size());
    std::transform(
        rows.begin(), rows.end(), order.begin(), [](const RankedRow& row) { return row.row; });
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
} // namespace dbif
