#include "dbif/host/host_number.h"

#include "dbif/host/host_string.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {
struct Scale
{
    std::string_view letters;
    int exponent;
};

// MEG stands before M, which is its prefix.
constexpr std::array<Scale, 12> kScales{
    {{"MEG", 6},
     {"T", 12},
     {"G", 9},
     {"X", 6},
     {"K", 3},
     {"M", -3},
     {"U", -6},
     {"N", -9},
     {"P", -12},
     {"F", -15},
     {"A", -18},
     {"", 0}}};

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

std::size_t count_digits(std::string_view text, std::size_t from)
{
    std::size_t end = from;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9') {
        ++end;
    }
    return end - from;
}

/// The length of "digits[.digits]" at `from`; 0 when there is no digit.
std::size_t mantissa_length(std::string_view text, std::size_t from)
{
    const std::size_t whole = count_digits(text, from);
    std::size_t end = from + whole;
    std::size_t fraction = 0;
    if (end < text.size() && text[end] == '.') {
        fraction = count_digits(text, end + 1);
        end += 1 + fraction;
    }
    return whole + fraction == 0 ? 0 : end - from;
}

/// The length of "E[sign]digits" at `from`; 0 when there is none.
std::size_t exponent_length(std::string_view text, std::size_t from)
{
    if (from >= text.size() || text[from] != 'E') {
        return 0;
    }
    std::size_t sign =
        from + 1 < text.size() && (text[from + 1] == '+' || text[from + 1] == '-') ? 1 : 0;
    const std::size_t digits = count_digits(text, from + 1 + sign);
    return digits == 0 ? 0 : 1 + sign + digits;
}

bool find_scale(std::string_view letters, int* exponent)
{
    for (const Scale& scale : kScales) {
        if (letters == scale.letters) {
            *exponent = scale.exponent;
            return true;
        }
    }
    return false;
}

/// The exponent's number; one that no number can have stands for all larger ones.
int read_exponent(std::string_view exponent)
{
    constexpr int kBeyond = 99'999;
    if (exponent.empty()) {
        return 0;
    }
    const bool isNegative = exponent[1] == '-';
    const char* digits = exponent.data() + (isNegative || exponent[1] == '+' ? 2 : 1);
    int number = 0;
    if (std::from_chars(digits, exponent.data() + exponent.size(), number).ec != std::errc()) {
        number = kBeyond;
    }
    number = std::min(number, kBeyond);
    return isNegative ? -number : number;
}

/// Tells whether a number that is out of range is so because it is small: its first digit stands
/// far behind the point.
bool is_tiny(std::string_view mantissa, int exponent)
{
    const auto point = static_cast<long long>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<long long>(mantissa.find_first_not_of("0."));
    return point - first + exponent < 0;
}

/// The mantissa with its exponent shifted by the scale, so that rounding happens once.
double read_decimal(std::string_view mantissa, std::string_view exponent, int scale)
{
    const int shift = read_exponent(exponent) + scale;
    const std::string decimal = std::string(mantissa) + "e" + std::to_string(shift);
    double number = 0;
    const auto result = std::from_chars(decimal.data(), decimal.data() + decimal.size(), number);
    if (result.ec == std::errc::result_out_of_range && is_tiny(mantissa, shift)) {
        return 0.0;
    }
    return result.ec == std::errc() ? number : kNoNumber;
}
} // namespace

namespace dbif {
double read_engineering_number(std::string_view text)
{
    const std::string upper = upper_case(trimmed(text));
    const std::size_t sign = !upper.empty() && (upper[0] == '+' || upper[0] == '-') ? 1 : 0;
    const std::size_t mantissa = mantissa_length(upper, sign);
    if (mantissa == 0) {
        return kNoNumber;
    }
    const std::size_t exponent = exponent_length(upper, sign + mantissa);
    int scale = 0;
    const std::string_view all = upper;
    if (!find_scale(all.substr(sign + mantissa + exponent), &scale)) {
        return kNoNumber;
    }
    const double number =
        read_decimal(all.substr(sign, mantissa), all.substr(sign + mantissa, exponent), scale);
    return upper[0] == '-' ? -number : number;
}

namespace {
/// Digits and decimal point position of a number: value = 0.d1d2d3... x 10^point.
struct Decimal
{
    std::array<char, 20> digits{};
    int count = 0;
    int point = 0;
};

/// The digits and the point of the shortest text in the form d.dddde-dd, which ends at `end`.
Decimal decimal_of(const char* text, const char* end)
{
    const char* exponent = end - (end[-4] == 'e' ? 4 : 5);
    Decimal decimal;
    decimal.digits[0] = *text;
    decimal.count = 1;
    if (text[1] == '.') {
        const auto more = static_cast<std::size_t>(exponent - (text + 2));
        std::memcpy(decimal.digits.data() + 1, text + 2, more);
        decimal.count += static_cast<int>(more);
    }
    int power = 0;
    std::from_chars(exponent + 2, end, power);
    decimal.point = (exponent[1] == '-' ? -power : power) + 1;
    return decimal;
}

char* append(char* out, const char* text, int count)
{
    std::memcpy(out, text, static_cast<std::size_t>(count));
    return out + count;
}

char* append_zeros(char* out, int count)
{
    std::memset(out, '0', static_cast<std::size_t>(count));
    return out + count;
}

char* write_plain(const Decimal& decimal, char* out)
{
    if (decimal.point <= 0) {
        out = append_zeros(append(out, "0.", 2), -decimal.point);
        return append(out, decimal.digits.data(), decimal.count);
    }
    if (decimal.point >= decimal.count) {
        out = append(out, decimal.digits.data(), decimal.count);
        return append_zeros(out, decimal.point - decimal.count);
    }
    out = append(out, decimal.digits.data(), decimal.point);
    *out++ = '.';
    return append(out, decimal.digits.data() + decimal.point, decimal.count - decimal.point);
}

/// Qt's choice between the two layouts: the shorter one, plain where they are even.
bool is_plain(const Decimal& decimal)
{
    const int magnitude = std::abs(decimal.point - 1);
    const int scientific = decimal.count + (decimal.count > 1 ? 1 : 0) + (magnitude > 99 ? 5 : 4);
    if (decimal.point <= 0) {
        return 2 - decimal.point + decimal.count <= scientific;
    }
    const int plain = decimal.count > decimal.point ? decimal.count + 1 : decimal.point;
    return plain <= scientific;
}
} // namespace

char* format_double(double number, char* buffer)
{
    if (number == 0) {
        *buffer = '0';
        return buffer + 1;
    }
    if (!std::isfinite(number)) {
        const char* word = std::isnan(number) ? "nan" : (number < 0 ? "-inf" : "inf");
        return append(buffer, word, static_cast<int>(std::strlen(word)));
    }
    // The standard library chooses the same layout, but writes large numbers with the digits of
    // their binary value.
    constexpr double kFirstLarge = 9007199254740992;
    if (std::abs(number) < kFirstLarge) {
        return std::to_chars(buffer, buffer + kLongestDouble, number).ptr;
    }
    char* out = buffer;
    if (number < 0) {
        *out++ = '-';
        number = -number;
    }
    char* const end =
        std::to_chars(out, buffer + kLongestDouble, number, std::chars_format::scientific).ptr;
    const Decimal decimal = decimal_of(out, end);
    return is_plain(decimal) ? write_plain(decimal, out) : end;
}

std::string double_text(double number)
{
    std::array<char, kLongestDouble> buffer{};
    return {buffer.data(), format_double(number, buffer.data())};
}
} // namespace dbif

double enot_to_dbl(const char* text)
{
    return text == nullptr ? kNoNumber : dbif::read_engineering_number(text);
}
