#pragma once

#include <string>
#include <string_view>

/// Reads one number in engineering notation, as circuit simulators write it: an optional sign, a
/// decimal number, an optional exponent, then at most one scale in any letter case:
///
///     T 1e12, G 1e9, X or MEG 1e6, K 1e3, M 1e-3, U 1e-6, N 1e-9, P 1e-12, F 1e-15, A 1e-18
///
/// The result is the double nearest to the scaled number, so `0.15u` is exactly 1.5e-07; a number
/// too small for a double is 0. Blanks around the number are skipped. Any other text, a number too
/// large for a double, and null give NaN. Independent of the locale.
double enot_to_dbl(const char* text);

namespace dbif {
/// `enot_to_dbl` of a text that need not be zero-terminated.
double read_engineering_number(std::string_view text);

/// The longest text that `format_double` writes.
inline constexpr std::size_t kLongestDouble = 32;

/// Writes the shortest decimal text that reads back to the same double, laid out as
/// `QVariant(number).toString()` lays it out ("1e-06", "0.1", "100000"; both zeros are "0"), and
/// returns its end. `buffer` has room for `kLongestDouble` characters.
char* format_double(double number, char* buffer);
std::string double_text(double number);
} // namespace dbif
