#pragma once

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

namespace dbif {
/// One column of a query's result, a value per row. 'No value' is NaN, a complex number with a NaN
/// real part, or an empty text.
struct ResultColumn
{
    enum class Kind { Integer, Double, Complex, Text, SharedText };

    Kind kind = Kind::Text;
    /// Of `Integer` and `Double`.
    std::vector<double> numbers;
    std::vector<std::complex<double>> complexNumbers;
    std::vector<std::string> texts;
    /// Of `SharedText`, where many rows have the same text: the row's place in `dictionary`.
    std::vector<std::uint32_t> codes;
    std::vector<std::string> dictionary;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::string text(std::size_t row) const;
    /// Makes room for so many rows.
    void reserve(std::size_t rows);
    /// Leaves the rows that are marked.
    void keepRows(const std::vector<bool>& isKept);
};

/// The rows of a query's result, column by column; all columns have the same length.
struct QueryResult
{
    std::vector<ResultColumn> columns;
    std::size_t rows = 0;
};

/// By which column rows are sorted, and which way.
struct SortKey
{
    std::size_t column;
    bool isAscending;
};

/// Sorts the rows: no value first, numbers as numbers, complex ones by real then imaginary part,
/// texts byte by byte.
void sort_rows(const std::vector<SortKey>& keys, QueryResult* result);
/// Leaves one of each run of equal rows.
void remove_repeated_rows(QueryResult* result);
void keep_first_rows(std::size_t count, QueryResult* result);

/// The texts of a column, which is emptied.
std::vector<std::string> take_texts(ResultColumn* column);
} // namespace dbif
