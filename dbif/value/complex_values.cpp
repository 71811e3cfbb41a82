#include "dbif/value/complex_values.h"

#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <cmath>

namespace dbif {
std::string complex_text(std::complex<double> number)
{
    if (std::isnan(number.real())) {
        return {};
    }
    const std::string imaginary = double_text(number.imag());
    return double_text(number.real()) + (imaginary.starts_with('-') ? "" : "+") + imaginary + "j";
}

std::string matrix_text(const ComplexMatrix& matrix)
{
    if (matrix.rows == 0) {
        return {};
    }
    std::string text = "[";
    for (std::size_t row = 0; row < matrix.rows; ++row) {
        text += row == 0 ? "[" : ", [";
        for (std::size_t column = 0; column < matrix.columns; ++column) {
            text += column == 0 ? "" : ", ";
            text += complex_text(matrix.cells[row * matrix.columns + column]);
        }
        text += "]";
    }
    return text + "]";
}

namespace {
/// Where the imaginary part begins: at the last sign that does not belong to an exponent.
std::size_t imaginary_start(std::string_view text)
{
    for (std::size_t i = text.size(); i-- > 1;) {
        const bool isSign = text[i] == '+' || text[i] == '-';
        if (isSign && text[i - 1] != 'e' && text[i - 1] != 'E') {
            return i;
        }
    }
    return 0;
}
} // namespace

std::optional<std::complex<double>> read_complex(std::string_view text)
{
    const std::string number = trimmed(text);
    if (number.empty()) {
        return kNoComplex;
    }
    double real = 0;
    double imaginary = 0;
    if (number.ends_with('j') || number.ends_with('i')) {
        const std::string_view parts = std::string_view(number).substr(0, number.size() - 1);
        const std::size_t split = imaginary_start(parts);
        const std::string_view imaginaryPart = parts.substr(split);
        const bool isUnit = imaginaryPart.empty() || imaginaryPart == "+" || imaginaryPart == "-";
        imaginary =
            isUnit ? (imaginaryPart == "-" ? -1.0 : 1.0) : read_engineering_number(imaginaryPart);
        real = split == 0 ? 0.0 : read_engineering_number(parts.substr(0, split));
    } else {
        real = read_engineering_number(number);
    }
    if (std::isnan(real) || std::isnan(imaginary)) {
        return std::nullopt;
    }
    return std::complex<double>(real, imaginary);
}

namespace {
/// Reads "[[a, b], [c, d]]" from left to right.
class MatrixReader
{
public:
    explicit MatrixReader(std::string_view text) : text_(text) {}

    std::optional<ComplexMatrix> read()
    {
        ComplexMatrix matrix;
        if (!take('[')) {
            return std::nullopt;
        }
        do {
            if (!readRow(&matrix)) {
                return std::nullopt;
            }
        } while (take(','));
        skipBlanks();
        return take(']') && at_ == text_.size() ? std::optional(matrix) : std::nullopt;
    }

private:
    void skipBlanks()
    {
        while (at_ < text_.size() && kBlanks.find(text_[at_]) != std::string_view::npos) {
            ++at_;
        }
    }

    bool take(char wanted)
    {
        skipBlanks();
        if (at_ >= text_.size() || text_[at_] != wanted) {
            return false;
        }
        ++at_;
        return true;
    }

    bool readRow(ComplexMatrix* matrix)
    {
        if (!take('[')) {
            return false;
        }
        std::size_t count = 0;
        do {
            const std::size_t end = text_.find_first_of(",]", at_);
            if (end == std::string_view::npos) {
                return false;
            }
            const auto cell = read_complex(text_.substr(at_, end - at_));
            if (!cell.has_value() || std::isnan(cell->real())) {
                return false;
            }
            matrix->cells.push_back(*cell);
            ++count;
            at_ = end;
        } while (take(','));
        if (matrix->rows > 0 && count != matrix->columns) {
            return false;
        }
        matrix->columns = count;
        ++matrix->rows;
        return take(']');
    }

    std::string_view text_;
    std::size_t at_ = 0;
};
} // namespace

std::optional<ComplexMatrix> read_matrix(std::string_view text)
{
    const std::string matrix = trimmed(text);
    if (matrix.empty()) {
        return ComplexMatrix();
    }
    return MatrixReader(matrix).read();
}
} // namespace dbif

void DBIF_ComplexNumber::print(std::ostream& out) const
{
    out << dbif::complex_text(number_);
}

QString DBIF_ComplexNumber::toString() const
{
    return dbif::to_qt(dbif::complex_text(number_));
}

QString DBIF_ComplexNumber::asQueryValue() const
{
    return DBIF_DataType::asQueryValue();
}

QString DBIF_ComplexMatrix::toString() const
{
    return dbif::to_qt(dbif::matrix_text(matrix_));
}
