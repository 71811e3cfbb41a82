#pragma once

#include "dbif/value/data_type.h"

#include <complex>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbif {
/// 'No value' among complex numbers: a real part that is NaN.
inline constexpr std::complex<double> kNoComplex{
    std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};

/// A matrix of complex numbers, row by row; 'no value' has no rows.
struct ComplexMatrix
{
    /// The number of rows and columns; `cells` has their product.
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<std::complex<double>> cells;

    friend bool operator==(const ComplexMatrix&, const ComplexMatrix&) = default;
};

/// "1.5-2j": both parts as `double_text` writes them. Empty for 'no value'.
std::string complex_text(std::complex<double> number);
/// "[[1+0j, 0+0.5j], [0+0.5j, 1+0j]]": the rows from top to bottom, each cell as `complex_text`
/// writes it. Empty for 'no value'.
std::string matrix_text(const ComplexMatrix& matrix);

/// Reads a complex number: a real part, an imaginary part with "j" (or "i") behind it, or both,
/// each in decimal or engineering notation; "j" alone is the imaginary unit. A part that is not
/// written is 0, and blanks around the text do not count. An empty text is 'no value'. Returns
/// nothing for any other text.
std::optional<std::complex<double>> read_complex(std::string_view text);

/// Reads a matrix as `matrix_text` writes it, with cells as `read_complex` takes them and blanks
/// between them. All rows have the same number of cells, and no cell is empty. An empty text is 'no
/// value'. Returns nothing for any other text.
std::optional<ComplexMatrix> read_matrix(std::string_view text);
} // namespace dbif

/// A complex number; a real part that is NaN is 'no value'.
class DBIF_ComplexNumber : public DBIF_DataType
{
public:
    explicit DBIF_ComplexNumber(std::complex<double> number) : number_(number) {}

    /// The number; its real part is NaN for 'no value'.
    [[nodiscard]] std::complex<double> number() const { return number_; }

    /// Writes `toString`, in UTF-8.
    void print(std::ostream& out) const override;
    /// The number as `complex_text` writes it.
    [[nodiscard]] QString toString() const override;
    /// The same text as a quoted SQL literal.
    [[nodiscard]] QString asQueryValue() const override;

private:
    std::complex<double> number_;
};

/// A matrix of complex numbers; one without rows is 'no value'.
class DBIF_ComplexMatrix : public DBIF_DataType
{
public:
    explicit DBIF_ComplexMatrix(dbif::ComplexMatrix matrix) : matrix_(std::move(matrix)) {}

    /// The matrix, valid as long as this object.
    [[nodiscard]] const dbif::ComplexMatrix& matrix() const { return matrix_; }

    /// The matrix as `matrix_text` writes it.
    [[nodiscard]] QString toString() const override;

private:
    dbif::ComplexMatrix matrix_;
};
