#include "dbif/retrieval/row_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

using dbif::QueryResult;
using dbif::ResultColumn;
using dbif::SortKey;

namespace {
using Kind = ResultColumn::Kind;

/// So many that columns with few values are sorted by counting, and by several threads.
constexpr std::size_t kManyRows = 150'000;

enum Column : std::size_t { Voltage, Model, Lot, Current, Impedance, Comment, Row };

/// A number without a pattern.
std::size_t scrambled(std::size_t row, std::size_t stream)
{
    return ((row + 1) * 2654435761U + stream * 40503U) % 1000003U;
}

ResultColumn column_of(Kind kind)
{
    ResultColumn column;
    column.kind = kind;
    return column;
}

QueryResult unsorted(std::size_t rows)
{
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> voltages{0.1, kNone, -0.0, 1.2, 0.0, -3, 1e-9};
    const std::vector<std::string> models{"nfet", "", "pfet", "nfet_lvt", "npn"};
    QueryResult result;
    result.rows = rows;
    for (const Kind kind :
         {Kind::Double, Kind::Text, Kind::SharedText, Kind::Double, Kind::Complex, Kind::Text,
          Kind::Integer}) {
        result.columns.push_back(column_of(kind));
    }
    result.columns[Lot].dictionary = std::make_shared<const std::vector<std::string>>(
        std::vector<std::string>{"L3", "L1", "L2", "L1"});
    for (std::size_t row = 0; row < rows; ++row) {
        const auto number = static_cast<double>(scrambled(row, 4));
        result.columns[Voltage].numbers.push_back(voltages[scrambled(row, 1) % voltages.size()]);
        result.columns[Model].texts.push_back(models[scrambled(row, 2) % models.size()]);
        result.columns[Lot].codes.push_back(static_cast<std::uint32_t>(scrambled(row, 3) % 4));
        result.columns[Current].numbers.push_back(row % 10 == 0 ? kNone : (number - 5e5) / 7e9);
        result.columns[Impedance].complexNumbers.emplace_back(
            scrambled(row, 5) % 3, scrambled(row, 6) % 90);
        result.columns[Comment].texts.push_back(
            "commented" + std::to_string(scrambled(row, 7) % 5000));
        result.columns[Row].numbers.push_back(static_cast<double>(row));
    }
    return result;
}

template <typename T>
int compare(const T& a, const T& b)
{
    return static_cast<int>(a > b) - static_cast<int>(a < b);
}

int compare(double a, double b)
{
    return std::isnan(a) || std::isnan(b) ? static_cast<int>(std::isnan(b)) - std::isnan(a)
                                          : static_cast<int>(a > b) - static_cast<int>(a < b);
}

int compare(const ResultColumn& column, std::size_t a, std::size_t b)
{
    switch (column.kind) {
    case Kind::Complex: {
        const auto& numbers = column.complexNumbers;
        const int real = compare(numbers[a].real(), numbers[b].real());
        return real != 0 ? real : compare(numbers[a].imag(), numbers[b].imag());
    }
    case Kind::Text:
    case Kind::SharedText:
        return compare(column.text(a), column.text(b));
    default:
        return compare(column.numbers[a], column.numbers[b]);
    }
}

/// The rows in order, by plain comparison; equal ones keep their order.
std::vector<std::size_t> expected_order(const QueryResult& result, const std::vector<SortKey>& keys)
{
    std::vector<std::size_t> rows(result.rows);
    std::iota(rows.begin(), rows.end(), std::size_t(0));
    std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
        for (const SortKey& key : keys) {
            const int by = compare(result.columns[key.column], a, b);
            if (by != 0) {
                return key.isAscending ? by < 0 : by > 0;
            }
        }
        return false;
    });
    return rows;
}
} // namespace

TEST(RowOrder, AgreesWithPlainComparison)
{
    const std::vector<std::vector<SortKey>> orders{
        {{Voltage, true}, {Model, false}, {Lot, true}, {Current, true}},
        {{Lot, false}, {Voltage, false}},
        {{Model, true}, {Comment, true}, {Voltage, true}},
        {{Current, false}, {Voltage, true}},
        {{Impedance, true}, {Lot, true}},
        {{Comment, false}, {Current, true}}};
    for (const std::size_t rows : {std::size_t(0), std::size_t(1), std::size_t(5000), kManyRows}) {
        for (const std::vector<SortKey>& keys : orders) {
            const QueryResult before = unsorted(rows);
            QueryResult sorted = before;
            dbif::sort_rows(keys, &sorted);
            const std::vector<std::size_t> expected = expected_order(before, keys);
            ASSERT_EQ(sorted.columns[Row].numbers.size(), rows);
            for (std::size_t i = 0; i < rows; ++i) {
                ASSERT_EQ(sorted.columns[Row].numbers[i], static_cast<double>(expected[i]))
                    << "place " << i << " of " << rows << ", by column " << keys.front().column;
            }
            for (const ResultColumn& column : sorted.columns) {
                const std::size_t which = static_cast<std::size_t>(&column - sorted.columns.data());
                for (std::size_t i = 0; i < rows; i += 97) {
                    ASSERT_EQ(column.text(i), before.columns[which].text(expected[i])) << which;
                }
            }
        }
    }
}

TEST(RowOrder, SortsASingleColumnAndWritesItsTexts)
{
    for (const Column which : {Voltage, Model, Lot, Current, Impedance, Comment}) {
        for (const bool isAscending : {true, false}) {
            QueryResult result = unsorted(kManyRows);
            result.columns = {result.columns[which]};
            const QueryResult before = result;
            dbif::sort_rows({{0, isAscending}}, &result);
            const std::vector<std::string> texts = dbif::take_texts(&result.columns[0]);
            const std::vector<std::size_t> expected = expected_order(before, {{0, isAscending}});
            ASSERT_EQ(texts.size(), kManyRows);
            for (std::size_t i = 0; i < texts.size(); ++i) {
                ASSERT_EQ(texts[i], before.columns[0].text(expected[i])) << which << " at " << i;
            }
        }
    }
}
