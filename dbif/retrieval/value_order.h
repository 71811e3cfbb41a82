#pragma once

#include <complex>
#include <cstdint>
#include <string>

namespace dbif {
/// How values of result columns are ordered: no value first, numbers as numbers, complex ones by
/// real then imaginary part, texts byte by byte, codes of shared texts as their places. Less than,
/// equal to or greater than 0.
int order_of(double a, double b);
int order_of(std::complex<double> a, std::complex<double> b);
int order_of(const std::string& a, const std::string& b);
int order_of(std::uint32_t a, std::uint32_t b);

/// A number that orders as the value does, as far as 64 bits tell: all of it for numbers and codes,
/// the real part of complex numbers, the first eight bytes of texts.
std::uint64_t rank_of(double number);
std::uint64_t rank_of(std::complex<double> number);
std::uint64_t rank_of(const std::string& text);
std::uint64_t rank_of(std::uint32_t code);

/// The number of that rank; both zeros are 0.
double number_of_rank(std::uint64_t rank);
} // namespace dbif
