#include "dbif/retrieval/row_order.h"

#include "dbif/host/parallel_for.h"
#include "dbif/retrieval/value_codes.h"
#include "dbif/retrieval/value_order.h"

#include <algorithm>
#include <boost/sort/spreadsort/integer_sort.hpp>
#include <cstdint>
#include <numeric>
#include <optional>
#include <span>
#include <string>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;
using Row = std::uint32_t;

/// The number of rows from which on work is worth a thread.
constexpr std::size_t kWorthAThread = 50'000;

/// Puts the dictionary into order, so that its places compare as the texts do.
void order_dictionary(ResultColumn* column)
{
    const std::vector<std::string>& texts = *column->dictionary;
    std::vector<Row> places(texts.size());
    std::iota(places.begin(), places.end(), Row(0));
    std::sort(places.begin(), places.end(), [&texts](Row a, Row b) { return texts[a] < texts[b]; });
    std::vector<Row> rank(places.size());
    std::vector<std::string> ordered;
    for (const Row place : places) {
        if (ordered.empty() || ordered.back() != texts[place]) {
            ordered.push_back(texts[place]);
        }
        rank[place] = static_cast<Row>(ordered.size() - 1);
    }
    for (Row& code : column->codes) {
        code = rank[code];
    }
    column->dictionary = std::make_shared<const std::vector<std::string>>(std::move(ordered));
}

int order_of_rows(const ResultColumn& column, Row a, Row b)
{
    return with_values(
        column, [a, b](const auto& values) { return order_of(values[a], values[b]); });
}

/// Puts into place i the value of row `order[i]`.
template <typename T>
void apply_order(const std::vector<Row>& order, std::vector<T>* values)
{
    std::vector<T> ordered(values->size());
    parallel_for(order.size(), kWorthAThread, [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            ordered[i] = std::move((*values)[order[i]]);
        }
    });
    *values = std::move(ordered);
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

/// Merges two runs of ranks, each in ascending order, and assigns their numbers.
void merge_ranks(
    const std::vector<std::uint64_t>& ranks,
    std::vector<std::uint64_t>::const_iterator middle,
    std::vector<double>* numbers)
{
    auto low = ranks.begin();
    auto high = middle;
    for (double& number : *numbers) {
        const bool isLow = high == ranks.end() || (low != middle && *low <= *high);
        number = number_of_rank(isLow ? *low++ : *high++);
    }
}

/// Sorts numbers by their ranks, with a radix sort.
void sort_values(std::vector<double>* numbers)
{
    const auto isBefore = [](double a, double b) {
        return order_of(a, b) < 0;
    };
    if (std::is_sorted(numbers->begin(), numbers->end(), isBefore)) {
        return;
    }
    std::vector<std::uint64_t> ranks(numbers->size());
    const auto middle = ranks.begin() + static_cast<std::ptrdiff_t>(ranks.size() / 2);
    parallel_for(
        2, ranks.size() < 2 * kWorthAThread ? 2 : 1, [&](std::size_t first, std::size_t last) {
            const auto begin = first == 0 ? ranks.begin() : middle;
            const auto end = last == 2 ? ranks.end() : middle;
            std::transform(
                numbers->begin() + (begin - ranks.begin()),
                numbers->begin() + (end - ranks.begin()), begin,
                [](double number) { return rank_of(number); });
            boost::sort::spreadsort::integer_sort(begin, end);
        });
    merge_ranks(ranks, middle, numbers);
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

/// A row with its rank in the column by which the rows are being sorted.
struct RankedRow
{
    std::uint64_t rank;
    Row row;
};

/// Sorts rows column by column: by the first column, then each run of equal rows by the next one.
/// The ranks that are compared are stored together, which is several times as fast as comparing
/// through the columns. Equal rows keep their order.
class RowSorter
{
public:
    RowSorter(const std::vector<SortKey>& keys, const QueryResult& result)
        : keys_(keys), result_(result)
    {}

    /// Sorts rows that are equal in the first `level` keys.
    void sort(std::span<Row> rows, std::size_t level) const
    {
        if (rows.size() < 2) {
            return;
        }
        if (level == keys_.size()) {
            // The radix sort does not keep the order of equal rows.
            if (!std::is_sorted(rows.begin(), rows.end())) {
                std::sort(rows.begin(), rows.end());
            }
            return;
        }
        std::vector<RankedRow> ranked = ranks(rows, level);
        sortByRank(ranked);
        if (!isExact(level)) {
            forEachRun<RankedRow>(
                ranked, byRank, [&](std::span<RankedRow> run) { sortByValue(run, level); });
        }
        std::transform(ranked.begin(), ranked.end(), rows.begin(), [](const RankedRow& row) {
            return row.row;
        });
        const auto areEqual = [&](const RankedRow& a, const RankedRow& b) {
            return a.rank == b.rank && (isExact(level) || order(level, a.row, b.row) == 0);
        };
        forEachRun<RankedRow>(ranked, areEqual, [&](std::span<RankedRow> run) {
            sort(
                rows.subspan(static_cast<std::size_t>(run.data() - ranked.data()), run.size()),
                level + 1);
        });
    }

private:
    static bool byRank(const RankedRow& a, const RankedRow& b) { return a.rank == b.rank; }

    [[nodiscard]] const ResultColumn& column(std::size_t level) const
    {
        return result_.columns[keys_[level].column];
    }

    /// Tells whether values of equal rank are equal.
    [[nodiscard]] bool isExact(std::size_t level) const
    {
        return column(level).kind != Kind::Text && column(level).kind != Kind::Complex;
    }

    [[nodiscard]] int order(std::size_t level, Row a, Row b) const
    {
        const int by = order_of_rows(column(level), a, b);
        return keys_[level].isAscending ? by : -by;
    }

    [[nodiscard]] std::vector<RankedRow> ranks(std::span<const Row> rows, std::size_t level) const
    {
        const bool isAscending = keys_[level].isAscending;
        std::vector<RankedRow> ranked(rows.size());
        with_values(column(level), [&](const auto& values) {
            std::transform(rows.begin(), rows.end(), ranked.begin(), [&](Row row) {
                const std::uint64_t rank = rank_of(values[row]);
                return RankedRow{isAscending ? rank : ~rank, row};
            });
        });
        return ranked;
    }

    static void sortByRank(std::vector<RankedRow>& rows)
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
            const int by = order(level, a.row, b.row);
            return by != 0 ? by < 0 : a.row < b.row;
        });
    }

    /// Calls `handle` for each run of two or more equal rows.
    template <typename T, typename Equal, typename Handle>
    static void forEachRun(std::span<T> rows, const Equal& areEqual, const Handle& handle)
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

/// Rows in groups that are in order; within a group, rows have equal values in the first columns
/// of the order and keep the order they had.
struct GroupedRows
{
    std::vector<Row> rows;
    /// Where each group begins; at the end, the number of rows.
    std::vector<std::size_t> starts;
    /// The number of columns that the groups are sorted by.
    std::size_t levels = 0;
};

/// Groups by the first columns as long as those have few values, by counting instead of comparing.
GroupedRows group_rows(const std::vector<SortKey>& keys, const QueryResult& result)
{
    constexpr std::size_t kMostGroups = 1U << 16U;
    std::vector<std::uint32_t> group(result.rows);
    std::size_t groups = 1;
    GroupedRows grouped;
    for (; grouped.levels < keys.size() && result.rows >= kMostGroups; ++grouped.levels) {
        const SortKey& key = keys[grouped.levels];
        const std::optional<ValueCodes> coded = code_values(result.columns[key.column]);
        if (!coded.has_value() || groups * coded->count > kMostGroups) {
            break;
        }
        groups *= coded->count;
        const auto count = static_cast<std::uint32_t>(coded->count);
        for (std::size_t row = 0; row < group.size(); ++row) {
            const std::uint32_t code = coded->codes[row];
            group[row] = group[row] * count + (key.isAscending ? code : count - 1 - code);
        }
    }
    grouped.starts.assign(groups + 1, 0);
    for (const std::uint32_t of : group) {
        ++grouped.starts[of + 1];
    }
    std::partial_sum(grouped.starts.begin(), grouped.starts.end(), grouped.starts.begin());
    std::vector<std::size_t> next = grouped.starts;
    grouped.rows.resize(result.rows);
    for (std::size_t row = 0; row < group.size(); ++row) {
        grouped.rows[next[group[row]]++] = static_cast<Row>(row);
    }
    return grouped;
}
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
    GroupedRows grouped = group_rows(keys, *result);
    const RowSorter sorter(keys, *result);
    const std::size_t groups = grouped.starts.size() - 1;
    parallel_for(
        groups, result->rows < kWorthAThread ? groups : 1,
        [&](std::size_t first, std::size_t last) {
            for (std::size_t group = first; group < last; ++group) {
                const std::size_t start = grouped.starts[group];
                const std::span<Row> rows(
                    grouped.rows.data() + start, grouped.starts[group + 1] - start);
                sorter.sort(rows, grouped.levels);
            }
        });
    for (ResultColumn& column : result->columns) {
        with_values(column, [&](auto& values) { apply_order(grouped.rows, &values); });
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
