#include "dbplot/picture.h"

#include <algorithm>
#include <cmath>

namespace dbapi {
namespace {
using Numbers = std::vector<double> Picture::Series::*;

bool has_number(const Picture& picture, Numbers numbers, bool (*test)(double))
{
    return std::any_of(
        picture.series.begin(), picture.series.end(), [&](const Picture::Series& series) {
            return std::any_of((series.*numbers).begin(), (series.*numbers).end(), test);
        });
}

void drop_signs(Picture* picture, Numbers numbers, Picture::Axis* axis)
{
    for (Picture::Series& series : picture->series) {
        for (double& number : series.*numbers) {
            number = std::abs(number);
        }
    }
    axis->title = "|" + axis->title + "|";
}

template <typename IsKept>
std::size_t keep_points(Picture::Series* series, const IsKept& isKept)
{
    std::size_t kept = 0;
    for (std::size_t point = 0; point < series->x.size(); ++point) {
        if (isKept(point)) {
            series->x[kept] = series->x[point];
            series->y[kept++] = series->y[point];
        }
    }
    const std::size_t dropped = series->x.size() - kept;
    series->x.resize(kept);
    series->y.resize(kept);
    return dropped;
}

bool is_negative(double number)
{
    return number < 0;
}

bool is_positive(double number)
{
    return number > 0;
}

void thin_series(Picture::Series* series, std::size_t stretches)
{
    const std::size_t points = series->x.size();
    std::vector<bool> isKept(points, false);
    for (std::size_t i = 0; i < stretches; ++i) {
        const std::size_t begin = points * i / stretches;
        const std::size_t end = points * (i + 1) / stretches;
        const auto first = series->y.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto last = series->y.begin() + static_cast<std::ptrdiff_t>(end);
        const auto [lowest, highest] = std::minmax_element(first, last);
        isKept[begin] = isKept[end - 1] = true;
        isKept[static_cast<std::size_t>(lowest - series->y.begin())] = true;
        isKept[static_cast<std::size_t>(highest - series->y.begin())] = true;
    }
    keep_points(series, [&isKept](std::size_t point) { return isKept[point]; });
}
} // namespace

std::size_t fit_to_axes(Picture* picture)
{
    if (picture->y.isLogarithmic && has_number(*picture, &Picture::Series::y, is_negative)) {
        drop_signs(picture, &Picture::Series::y, &picture->y);
    }
    if (picture->x.isLogarithmic && has_number(*picture, &Picture::Series::x, is_negative) &&
        !has_number(*picture, &Picture::Series::x, is_positive)) {
        drop_signs(picture, &Picture::Series::x, &picture->x);
    }
    std::size_t dropped = 0;
    for (Picture::Series& series : picture->series) {
        dropped += keep_points(&series, [&](std::size_t point) {
            return (!picture->x.isLogarithmic || series.x[point] > 0) &&
                   (!picture->y.isLogarithmic || series.y[point] > 0);
        });
    }
    std::erase_if(picture->series, [](const Picture::Series& series) { return series.x.empty(); });
    return dropped;
}

std::size_t count_points(const Picture& picture)
{
    std::size_t points = 0;
    for (const Picture::Series& series : picture.series) {
        points += series.x.size();
    }
    return points;
}

std::size_t thin_out(Picture* picture, std::size_t most)
{
    constexpr std::size_t kPerStretch = 4;
    const std::size_t points = count_points(*picture);
    if (points <= most) {
        return points;
    }
    for (Picture::Series& series : picture->series) {
        const double share = static_cast<double>(series.x.size()) / static_cast<double>(points);
        const auto stretches = static_cast<std::size_t>(
            std::ceil(share * static_cast<double>(most) / double(kPerStretch)));
        if (series.x.size() > stretches * kPerStretch) {
            thin_series(&series, stretches);
        }
    }
    return points;
}
} // namespace dbapi
