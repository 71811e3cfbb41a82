#pragma once

#include <array>
#include <cstdio>
#include <string>

namespace bench {
/// The number in a format of `printf`, which is a literal and gives less than 48 characters.
template <typename Number>
std::string formatted(const char* format, Number number)
{
    std::array<char, 48> text{};
    const int length = std::snprintf(text.data(), text.size(), format, number); // NOLINT
    return {text.data(), static_cast<std::size_t>(length)};
}
} // namespace bench
