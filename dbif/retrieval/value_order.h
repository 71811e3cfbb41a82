#pragma once

#include <complex>
#include <cstdint>
#include <string>

namespace dbif {
/// Compares values of result columns: no value comes first, numbers compare as numbers, complex
/// ones by real then imaginary part, texts byte by byte, codes of shared texts as their places. The
/// result is less than, equal to or greater than 0.
int order_of(double a, double b);
int order_of(std::complex<double> a, std::complex<double> b);
int order_of(const std::string& a, const std::string& b);
int order_of(std::uint32_t a, std::uint32_t b);

/// A number that orders as the value does, as far as 64 bits can tell: completely for numbers and
/// codes, by the real part for complex numbers, by the first eight bytes for texts.
std::uint64_t rank_of(double number);
std::uint64_t rank_of(std::complex<double> number);
std::uint64_t rank_of(const std::string& text);
std::uint64_t rank_of(std::uint32_t code);

/// The number of that rank; both zeros are 0.
double number_of_rank(std::uint64_t rank);
} // namespace dbif
