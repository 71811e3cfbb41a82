#pragma once

#include "dbif/retrieval/result_column.h"
#include "dbif/value/complex_values.h"
#include "dbif/value/table_column.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi {
/// The values of one keyword, one for each row. They stand in the vector that `type` names; the
/// others are empty.
struct ValueColumn
{
    enum class Type {
        Number,  ///< `numbers`
        Integer, ///< `integers`: ids of records
        Complex, ///< `complexNumbers`
        Matrix,  ///< `matrices`
        Text,    ///< `codes` and `dictionary`
        Time     ///< `integers`: microseconds since 1970-01-01 00:00 UTC
    };

    /// 'No value' in `integers` and `codes`; in `numbers` it is NaN, in `complexNumbers` a real
    /// part that is NaN, in `matrices` a matrix without rows.
    static constexpr std::int64_t kNoInteger = std::numeric_limits<std::int64_t>::min();
    static constexpr std::int32_t kNoText = -1;

    /// As the caller wrote it; "id" for the ids beside the rows.
    std::string keyword;
    /// The key that the keyword stands for: the name of the key or fixed column, its table, the
    /// key's category ("" for those without; "IN" or "OUT" of setups) and data type ("DOUBLE",
    /// "TEXT", "COMPLEX", "MATRIX"; "" of a fixed column).
    std::string name;
    std::string table;
    std::string category;
    std::string dataType;
    /// "" where it is not known. Databases do not hold units yet, so that it is always "".
    std::string unit;

    Type type = Type::Number;
    std::vector<double> numbers;
    std::vector<std::int64_t> integers;
    std::vector<std::complex<double>> complexNumbers;
    std::vector<dbif::ComplexMatrix> matrices;
    /// The place of each row's text in `dictionary`, where every text stands once, in UTF-8.
    std::vector<std::int32_t> codes;
    std::vector<std::string> dictionary;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool hasValue(std::size_t row) const;
    /// The number of rows that have no value.
    [[nodiscard]] std::size_t missing() const;

    /// Appends the value of a row as the text calls write it: nothing for 'no value', a time as
    /// "2026-01-31T12:34:56.789", UTC.
    void appendText(std::size_t row, std::string* to) const;

    /// The text of a row of a column of texts; empty for 'no value'. Valid as long as the column.
    [[nodiscard]] std::string_view text(std::size_t row) const
    {
        return codes[row] == kNoText ? std::string_view()
                                     : dictionary[static_cast<std::size_t>(codes[row])];
    }
};

/// Columns that several hold.
using SharedColumns = std::vector<std::shared_ptr<const ValueColumn>>;

/// Columns side by side, all with a value, or 'no value', for each row.
struct ColumnTable
{
    std::vector<ValueColumn> columns;
    std::size_t rows = 0;
};

/// A column without rows that says what the keyword stands for.
ValueColumn described_column(const std::string& keyword, const dbif::TableColumn& column);

/// The column with the values of a result, which is emptied. Throws `DBIF_Exception` for a stored
/// text that cannot be what the column holds.
ValueColumn with_values_of(ValueColumn column, dbif::ResultColumn* values);
} // namespace dbapi
