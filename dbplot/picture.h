#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// What is to be drawn: plain data, whoever draws it.
struct Picture
{
    struct Axis
    {
        std::string title;
        bool isLogarithmic = false;
        /// Of an axis of texts: the label at 0, 1, 2 ...
        std::vector<std::string> labels;
        /// Whether it counts something, in whole numbers.
        bool isCount = false;
    };

    struct Series
    {
        /// In the legend; empty: none.
        std::string label;
        std::vector<double> x;
        std::vector<double> y;
        /// The place of its colour, from 0 to 1.
        double colour = 0;
        /// The number of its dashes, from 0 (a full line).
        int dashes = 0;
    };

    enum class Style { Lines, Points, Bars };

    Style style = Style::Lines;
    std::string title;
    /// Above the legend.
    std::string legendTitle;
    Axis x;
    Axis y;
    std::vector<Series> series;
    /// Of bars: how far they reach to each side; of logarithmic x as factors.
    double halfWidth = 0;
};

/// Prepares the data for logarithmic axes: negative numbers lose their sign, which the title of the
/// axis then tells, and zeros are left out. Along x, signs are lost only where all are negative;
/// otherwise negative numbers are left out. Series without points go. Returns how many points were
/// left out.
std::size_t fit_to_axes(Picture* picture);

/// Thins series with many points, so that all have about `most`: of each stretch of a series the
/// first, lowest, highest and last point stay. Returns how many points there were.
std::size_t thin_out(Picture* picture, std::size_t most);

std::size_t count_points(const Picture& picture);
} // namespace dbapi
