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
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<std::complex<double>> cells;

    friend bool operator==(const ComplexMatrix&, const ComplexMatrix&) = default;
};

/// "1.5-2j": both parts in their shortest text. Empty for 'no value'.
std::string complex_text(std::complex<double> number);
/// "[[1+0j, 0.5j], [0.5j, 1+0j]]" with each cell as `complex_text` writes it (a missing real part
/// is 0 when read). Empty for 'no value'.
std::string matrix_text(const ComplexMatrix& matrix);

/// The reverse: a real part, an imaginary part with "j" (or "i") behind it, or both, in engineering
/// notation too. Nothing when the text is neither that nor empty; an empty text is 'no value'.
std::optional<std::complex<double>> read_complex(std::string_view text);
std::optional<ComplexMatrix> read_matrix(std::string_view text);
} // namespace dbif

/// A complex number.
class DBIF_ComplexNumber : public DBIF_DataType
{
public:
    explicit DBIF_ComplexNumber(std::complex<double> number) : number_(number) {}

    [[nodiscard]] std::complex<double> number() const { return number_; }

    void print(std::ostream& out) const override;
    [[nodiscard]] QString toString() const override;
    [[nodiscard]] QString asQueryValue() const override;

private:
    std::complex<double> number_;
};

/// A matrix of complex numbers.
class DBIF_ComplexMatrix : public DBIF_DataType
{
public:
    explicit DBIF_ComplexMatrix(dbif::ComplexMatrix matrix) : matrix_(std::move(matrix)) {}

    [[nodiscard]] const dbif::ComplexMatrix& matrix() const { return matrix_; }

    [[nodiscard]] QString toString() const override;

private:
    dbif::ComplexMatrix matrix_;
};
