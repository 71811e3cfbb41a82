#include "dbif/row_order.h"

#include <algorithm>
#include <bit>
#include <boost/sort/spreadsort/integer_sort.hpp>
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

/// The number of that rank; both zeros are 0.
double number_of_rank(std::uint64_t rank)
{
    constexpr std::uint64_t kSign = std::uint64_t(1) << 63U;
    if (rank == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return std::bit_cast<double>((rank & kSign) != 0 ? rank & ~kSign : ~rank);
}

template <typename T>
void sort_values(std::vector<T>* values)
{
    const auto isBefore = [](const T& a, const T& b) {
        return order_of(a, b) < 0;
    };
    if (!std::is_sorted(values->begin(), values->end(), isBefore)) {
        std::sort(values->begin(), values->end(), isBefore);
    }
}

/// By their ranks, which a radix sort takes.
void sort_values(std::vector<double>* numbers)
{
    const auto isBefore = [](double a, double b) {
        return order_of(a, b) < 0;
    };
    if (std::is_sorted(numbers->begin(), numbers->end(), isBefore)) {
        return;
    }
    std::vector<std::uint64_t> ranks(numbers->size());
    std::transform(numbers->begin(), numbers->end(), ranks.begin(), [](double number) {
        return rank_of(number);
    });
    boost::sort::spreadsort::integer_sort(ranks.begin(), ranks.end());
    std::transform(ranks.begin(), ranks.end(), numbers->begin(), number_of_rank);
}

void sort_single(bool isAscending, ResultColumn* column)
{
    with_values(*column, [isAscending](auto& values) {
        sort_values(&values);
        if (!isAscending) {
            std::reverse(values.begin(), values.end());
        }
    });
}

/// A row while the rows are sorted by one column.
struct RankedRow
{
    std::uint64_t rank;
    Row row;
};

/// Sorts rows column by column: first by the first, then each run of equal rows by the next. The
/// numbers that are compared stand side by side, which is several times as fast as comparing
/// through the columns. Equal rows keep their order.
class RowSorter
{
public:
    RowSorter(const std::vector<SortKey>& keys, const QueryResult& result)
        : keys_(keys), result_(result)
    {}

    void sort(std::span<RankedRow> rows, std::size_t level) const
    {
        rank(rows, level);
        sortByRank(rows);
        if (!isExact(level)) {
            forEachRun(rows, byRank, [&](std::span<RankedRow> run) { sortByValue(run, level); });
        }
        if (level + 1 == keys_.size()) {
            return;
        }
        const auto areEqual = [&](const RankedRow& a, const RankedRow& b) {
            return a.rank == b.rank && (isExact(level) || order(level, a, b) == 0);
        };
        forEachRun(rows, areEqual, [&](std::span<RankedRow> run) { sort(run, level + 1); });
    }

private:
    static bool byRank(const RankedRow& a, const RankedRow& b) { return a.rank == b.rank; }

    [[nodiscard]] const ResultColumn& column(std::size_t level) const
    {
        return result_.columns[keys_[level].column];
    }

    /// Whether equal ranks are equal values.
    [[nodiscard]] bool isExact(std::size_t level) const
    {
        return column(level).kind != Kind::Text && column(level).kind != Kind::Complex;
    }

    [[nodiscard]] int order(std::size_t level, const RankedRow& a, const RankedRow& b) const
    {
        const int by = order_of_rows(column(level), a.row, b.row);
        return keys_[level].isAscending ? by : -by;
    }

    void rank(std::span<RankedRow> rows, std::size_t level) const
    {
        const bool isAscending = keys_[level].isAscending;
        with_values(column(level), [&](const auto& values) {
            for (RankedRow& row : rows) {
                row.rank = isAscending ? rank_of(values[row.row]) : ~rank_of(values[row.row]);
            }
        });
    }

    static void sortByRank(std::span<RankedRow> rows)
    {
        const auto isBefore = [](const RankedRow& a, const RankedRow& b) {
            return a.rank != b.rank ? a.rank < b.rank : a.row < b.row;
        };
        if (rows.size() < kFewRows) {
            std::sort(rows.begin(), rows.end(), isBefore);
            return;
        }
        boost::sort::spreadsort::integer_sort(
            rows.begin(), rows.end(),
            [](const RankedRow& row, unsigned bits) { return row.rank >> bits; }, isBefore);
    }

    void sortByValue(std::span<RankedRow> rows, std::size_t level) const
    {
        std::sort(rows.begin(), rows.end(), [&](const RankedRow& a, const RankedRow& b) {
            const int by = order(level, a, b);
            return by != 0 ? by < 0 : a.row < b.row;
        });
    }

    /// Calls `handle` for each run of two or more equal rows.
    template <typename Equal, typename Handle>
    static void forEachRun(std::span<RankedRow> rows, const Equal& areEqual, const Handle& handle)
    {
        for (std::size_t start = 0; start < rows.size();) {
            std::size_t end = start + 1;
            while (end < rows.size() && areEqual(rows[start], rows[end])) {
                ++end;
            }
            if (end - start > 1) {
                handle(rows.subspan(start, end - start));
            }
            start = end;
        }
    }

    static constexpr std::size_t kFewRows = 1000;

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

namespace {
bool are_equal(const std::vector<ResultColumn>& columns, Row a, Row b)
{
    return std::all_of(columns.begin(), columns.end(), [a, b](const ResultColumn& column) {
        return order_of_rows(column, a, b) == 0;
    });
}

void move_row(Row from, Row to, std::vector<ResultColumn>* columns)
{
    for (ResultColumn& column : *columns) {
        with_values(column, [from, to](auto& values) { values[to] = std::move(values[from]); });
    }
}
} // namespace

void remove_repeated_rows(QueryResult* result)
{
    Row kept = 0;
    for (Row row = 0; row < result->rows; ++row) {
        if (kept > 0 && are_equal(result->columns, kept - 1, row)) {
            continue;
        }
        if (kept != row) {
            move_row(row, kept, &result->columns);
        }
        ++kept;
    }
    keep_first_rows(kept, result);
}
} // namespace dbif
