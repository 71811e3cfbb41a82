#include "dbif/sweep/sweep_array.h"

#include "dbif/host/host_number.h"

#include <algorithm>
#include <cmath>

namespace dbif {
void SweepArray::clear()
{
    numbers.clear();
    complexNumbers.clear();
    matrices.clear();
    texts.clear();
}

std::size_t SweepArray::size() const
{
    switch (kind) {
    case ValueKind::Double:
        return numbers.size();
    case ValueKind::Complex:
        return complexNumbers.size();
    case ValueKind::Matrix:
        return matrices.size();
    case ValueKind::Text:
        return texts.size();
    }
    return 0;
}

bool SweepArray::hasValue(std::size_t point) const
{
    switch (kind) {
    case ValueKind::Double:
        return !std::isnan(numbers[point]);
    case ValueKind::Complex:
        return !std::isnan(complexNumbers[point].real());
    case ValueKind::Matrix:
        return matrices[point].rows > 0;
    case ValueKind::Text:
        return texts[point].has_value();
    }
    return false;
}

std::string SweepArray::text(std::size_t point) const
{
    switch (kind) {
    case ValueKind::Double:
        return std::isnan(numbers[point]) ? std::string() : double_text(numbers[point]);
    case ValueKind::Complex:
        return complex_text(complexNumbers[point]);
    case ValueKind::Matrix:
        return matrix_text(matrices[point]);
    case ValueKind::Text:
        return texts[point].value_or(std::string());
    }
    return {};
}

std::optional<SweepBounds> bounds(const SweepArray& array)
{
    std::optional<SweepBounds> found;
    if (array.kind != ValueKind::Double) {
        return found;
    }
    for (const double number : array.numbers) {
        if (std::isnan(number)) {
            continue;
        }
        if (!found.has_value()) {
            found = SweepBounds{number, number};
        }
        found->minimum = std::min(found->minimum, number);
        found->maximum = std::max(found->maximum, number);
    }
    return found;
}

bool is_finite(const SweepArray& array)
{
    const auto isFinite = [](const std::complex<double>& number) {
        return std::isfinite(number.real()) && std::isfinite(number.imag());
    };
    switch (array.kind) {
    case ValueKind::Double:
        return std::none_of(array.numbers.begin(), array.numbers.end(), [](double number) {
            return std::isinf(number);
        });
    case ValueKind::Complex:
        return std::all_of(
            array.complexNumbers.begin(), array.complexNumbers.end(),
            [&](const auto& number) { return std::isnan(number.real()) || isFinite(number); });
    case ValueKind::Matrix:
        return std::all_of(
            array.matrices.begin(), array.matrices.end(), [&](const ComplexMatrix& matrix) {
                return std::all_of(matrix.cells.begin(), matrix.cells.end(), isFinite);
            });
    case ValueKind::Text:
        break;
    }
    return true;
}
} // namespace dbif
