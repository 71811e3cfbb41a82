#pragma once

#include <complex>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace dbif {
/// One column of a query's result, a value per row. 'No value' is NaN, a complex number with a NaN
/// real part, or an empty text.
struct ResultColumn
{
    enum class Kind { Integer, Double, Complex, Text, SharedText };

    Kind kind = Kind::Text;
    /// The values of the kinds `Integer` and `Double`.
    std::vector<double> numbers;
    std::vector<std::complex<double>> complexNumbers;
    std::vector<std::string> texts;
    /// The values of the kind `SharedText`, for columns in which many rows have the same text: the
    /// row's place in `dictionary`.
    std::vector<std::uint32_t> codes;
    std::shared_ptr<const std::vector<std::string>> dictionary;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::string text(std::size_t row) const;
    /// Makes room for this many rows.
    void reserve(std::size_t rows);
    /// Keeps the rows that are marked with 1.
    void keepRows(const std::vector<std::uint8_t>& isKept);
};

/// The rows of a query's result, column by column; all columns have the same length.
struct QueryResult
{
    std::vector<ResultColumn> columns;
    std::size_t rows = 0;
};

/// Calls `use` with the vector that holds the column's values.
template <typename Column, typename Use>
auto with_values(Column& column, const Use& use)
{
    switch (column.kind) {
    case ResultColumn::Kind::Integer:
    case ResultColumn::Kind::Double:
        return use(column.numbers);
    case ResultColumn::Kind::Complex:
        return use(column.complexNumbers);
    case ResultColumn::Kind::SharedText:
        return use(column.codes);
    case ResultColumn::Kind::Text:
        break;
    }
    return use(column.texts);
}

void keep_first_rows(std::size_t count, QueryResult* result);
/// Appends rows `first` to `last` (not included) of a column of the same kind.
void append_rows(
    const ResultColumn& from,
    std::size_t first,
    std::size_t last,
    ResultColumn* column);

/// Returns the texts of a column, and empties it.
std::vector<std::string> take_texts(ResultColumn* column);
} // namespace dbif
