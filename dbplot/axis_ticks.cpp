#include "dbplot/axis_ticks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace dbapi {
namespace {
/// About how many intervals between ticks an axis has.
constexpr double kIntervals = 9;
/// With more decades, not each one has a label; with fewer, 2 and 5 have one too.
constexpr int kManyDecades = 12;
constexpr int kFewDecades = 2;

/// Data may reach so far, in steps, beyond the outermost tick.
constexpr double kOverhang = 0.04;

struct Prefix
{
    int exponent;
    const char* letters;
};

/// As query strings read them: M is milli.
constexpr std::array kPrefixes{Prefix{-18, "a"}, Prefix{-15, "f"}, Prefix{-12, "p"},
                               Prefix{-9, "n"},  Prefix{-6, "u"},  Prefix{-3, "m"},
                               Prefix{0, ""},    Prefix{3, "k"},   Prefix{6, "MEG"},
                               Prefix{9, "G"},   Prefix{12, "T"}};

enum class Plain { From100m, From1 };

/// The prefix for numbers up to this size; null where there is none.
const Prefix* find_prefix(double size, Plain plain = Plain::From100m)
{
    // A hair above, so that 1e-06 is 1u and not 1000n.
    const double grown = size * (1 + 1e-9);
    if (plain == Plain::From100m && grown >= 0.1 && grown < 1000) {
        return &kPrefixes[6];
    }
    const auto found = std::find_if(kPrefixes.rbegin(), kPrefixes.rend(), [grown](const Prefix& p) {
        return grown >= std::pow(10.0, p.exponent);
    });
    return found == kPrefixes.rend() || grown >= 1e15 ? nullptr : &*found;
}

std::string text_of(double number, const Prefix* prefix, int digits)
{
    const double scale = prefix == nullptr ? 1 : std::pow(10.0, -prefix->exponent);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.*g", digits, number * scale);
    return std::string(text.data()) + (prefix == nullptr ? "" : prefix->letters);
}

/// Digits of a tick: enough for ten thousand steps beside each other.
constexpr int kTickDigits = 6;

/// Beside 10m, 0.1 reads 100m.
std::string decade_text(double number)
{
    return text_of(number, find_prefix(number, Plain::From1), kTickDigits);
}

/// The ticks 1 to 9 times a power of ten.
void add_decade(double decade, bool isLabelled, bool hasMore, AxisTicks* axis)
{
    for (int times = 1; times < 10; ++times) {
        const double at = times * decade;
        const bool hasLabel = times == 1 ? isLabelled : hasMore && (times == 2 || times == 5);
        if (at >= axis->low * (1 - 1e-9) && at <= axis->high * (1 + 1e-9)) {
            axis->ticks.push_back({at, hasLabel ? decade_text(at) : std::string()});
        }
    }
}
} // namespace

std::string engineering_text(double number, int digits)
{
    if (number == 0) {
        return "0";
    }
    return text_of(number, find_prefix(std::abs(number)), digits);
}

double round_up(double number)
{
    const double decade = std::pow(10.0, std::floor(std::log10(number)));
    for (const double times : {1.0, 2.0, 5.0}) {
        if (number <= times * decade * (1 + 1e-9)) {
            return times * decade;
        }
    }
    return 10 * decade;
}

AxisTicks linear_ticks(double low, double high, double smallestStep)
{
    // A single number stands in the middle.
    const double size = std::max(std::abs(low), std::abs(high));
    if (high - low <= size * 1e-9) {
        const double margin = size == 0 ? 1 : size * 0.1;
        low -= margin;
        high += margin;
    }
    const double step = std::max(smallestStep, round_up((high / kIntervals) - (low / kIntervals)));
    // Noise around the last tick is no reason for a tick more.
    const double first = std::floor(low / step + kOverhang);
    const double last = std::ceil(high / step - kOverhang);
    AxisTicks axis{std::min(low, first * step), std::max(high, last * step), {}};
    const double largest = std::max(std::abs(axis.low), std::abs(axis.high));
    const Prefix* prefix = find_prefix(largest);
    const auto count = static_cast<std::size_t>(std::lround(last - first)) + 1;
    for (std::size_t i = 0; i < count; ++i) {
        const double steps = first + static_cast<double>(i);
        axis.ticks.push_back(
            {steps * step, steps == 0 ? "0" : text_of(steps * step, prefix, kTickDigits)});
    }
    return axis;
}

AxisTicks logarithmic_ticks(double low, double high)
{
    const int first = static_cast<int>(std::floor(std::log10(low) + 1e-9));
    int last = static_cast<int>(std::ceil(std::log10(high) - 1e-9));
    last = std::max(last, first + 1);
    AxisTicks axis{std::pow(10.0, first), std::pow(10.0, last), {}};
    const int every = std::max(1, (last - first + kManyDecades - 1) / kManyDecades);
    for (int decade = first; decade <= last; ++decade) {
        const bool isLabelled = (decade - first) % every == 0;
        if (every > 1) {
            axis.ticks.push_back(
                {std::pow(10.0, decade),
                 isLabelled ? decade_text(std::pow(10.0, decade)) : std::string()});
        } else {
            add_decade(std::pow(10.0, decade), true, last - first <= kFewDecades, &axis);
        }
    }
    return axis;
}
} // namespace dbapi
