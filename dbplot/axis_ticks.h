#pragma once

#include <string>
#include <vector>

namespace dbapi {
/// A number as engineers write it and queries read it: "130n", "4.7MEG", plain from 0.1 to 1000; in
/// at most `digits` digits.
std::string engineering_text(double number, int digits = 4);

/// The ticks of an axis.
struct AxisTicks
{
    struct Tick
    {
        double at;
        /// Empty for a tick between labelled ones.
        std::string label;
    };

    /// Where the axis begins and ends.
    double low;
    double high;
    std::vector<Tick> ticks;
};

/// Ticks at round numbers for an axis over the numbers from `low` to `high`, all labelled with the
/// same prefix, at least `smallestStep` apart. Both are finite.
AxisTicks linear_ticks(double low, double high, double smallestStep = 0);

/// The same for a logarithmic axis; both numbers are above 0.
AxisTicks logarithmic_ticks(double low, double high);

/// The round number (1, 2 or 5 times a power of ten) next above or equal to a positive one.
double round_up(double number);
} // namespace dbapi
