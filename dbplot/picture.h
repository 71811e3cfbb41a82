#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// A diagram as plain data: nothing in it depends on the program that draws it. Texts are UTF-8.
struct Picture
{
    struct Axis
    {
        std::string title;
        bool isLogarithmic = false;
        /// The labels at 0, 1, 2 ... of an axis of texts; empty for an axis of numbers.
        std::vector<std::string> labels;
        /// Tells whether the axis counts something, in whole numbers.
        bool isCount = false;
    };

    /// Points that belong together.
    struct Series
    {
        /// The name in the legend; empty for none.
        std::string label;
        /// The points; both have the same length.
        std::vector<double> x;
        std::vector<double> y;
        /// The place of its colour on the palette, from 0 to 1.
        double colour = 0;
        /// The number of its dash pattern; 0 is a full line.
        int dashes = 0;
    };

    /// `Bars` stand at x and are as high as y.
    enum class Style { Lines, Points, Bars };

    Style style = Style::Lines;
    /// Above the diagram, and above the legend; empty for none.
    std::string title;
    std::string legendTitle;
    Axis x;
    Axis y;
    std::vector<Series> series;
    /// How far bars reach to each side of x: in units of x or, on a logarithmic axis, as a factor.
    double halfWidth = 0;
};

/// Prepares the data for the logarithmic ones of the axes. Along y, negative numbers lose their
/// sign; along x they do so only where all are negative, and are left out otherwise. The title of
/// an axis whose numbers lost their signs becomes "|title|". Zeros are left out, and so are series
/// that have no point then. Returns how many points were left out; 0 for linear axes.
std::size_t fit_to_axes(Picture* picture);

/// Thins series with many points, so that all series together have about `most`: of each stretch of
/// a series the first, lowest, highest and last point stay, so that peaks do. Returns how many
/// points there were. A picture of fewer points stays as it is.
std::size_t thin_out(Picture* picture, std::size_t most);

/// The number of points all series have together.
std::size_t count_points(const Picture& picture);
} // namespace dbapi
