#include "dbif/retrieval/value_order.h"

#include <bit>
#include <cmath>
#include <limits>

namespace dbif {
namespace {
constexpr std::uint64_t kSign = std::uint64_t(1) << 63U;
} // namespace

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

std::uint64_t rank_of(double number)
{
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

std::uint64_t rank_of(const std::string& text)
{
    std::uint64_t rank = 0;
    for (std::size_t i = 0; i < sizeof(rank); ++i) {
        rank = rank << 8U | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return rank;
}

std::uint64_t rank_of(std::uint32_t code)
{
    return code;
}

double number_of_rank(std::uint64_t rank)
{
    if (rank == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return std::bit_cast<double>((rank & kSign) != 0 ? rank & ~kSign : ~rank);
}
} // namespace dbif
