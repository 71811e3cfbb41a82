#include "dbplot/axis_ticks.h"
#include "dbplot/curve_picture.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace dbapi {
namespace {
/// Texts beyond these count as others.
constexpr std::size_t kMostBars = 40;
/// So few different numbers have a bar each.
constexpr std::size_t kFewNumbers = 24;
constexpr double kMostSteps = 80;
/// The width of the step around numbers that are all equal.
constexpr double kOnlyStep = 0.1;

struct Bar
{
    std::string label;
    std::size_t count = 0;
};

Picture::Series series_of_bars(const std::vector<Bar>& bars)
{
    Picture::Series series;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        series.x.push_back(static_cast<double>(i));
        series.y.push_back(static_cast<double>(bars[i].count));
    }
    return series;
}

std::vector<Bar> text_bars(const ValueSample& sample)
{
    std::vector<Bar> bars;
    for (const std::string& label : sample.axis.labels) {
        bars.push_back({label, 0});
    }
    for (const double place : sample.values) {
        if (!std::isnan(place)) {
            ++bars[static_cast<std::size_t>(place)].count;
        }
    }
    std::stable_sort(
        bars.begin(), bars.end(), [](const Bar& a, const Bar& b) { return a.count > b.count; });
    if (bars.size() > kMostBars) {
        Bar others{std::to_string(bars.size() - kMostBars + 1) + " others", 0};
        for (std::size_t i = kMostBars - 1; i < bars.size(); ++i) {
            others.count += bars[i].count;
        }
        bars.resize(kMostBars - 1);
        bars.push_back(others);
    }
    return bars;
}

/// A bar for each number; none when there are many different ones. Numbers that read the same in
/// six digits are one.
std::vector<Bar> number_bars(const std::vector<double>& sorted)
{
    std::vector<Bar> bars;
    for (const double number : sorted) {
        const std::string label = engineering_text(number, 6);
        if (bars.empty() || bars.back().label != label) {
            bars.push_back({label, 0});
        }
        ++bars.back().count;
        if (bars.size() > kFewNumbers) {
            return {};
        }
    }
    return bars;
}

/// The width of steps that suits the numbers: twice the distance between the quartiles over the
/// cube root of their count (Freedman and Diaconis), rounded up.
double step_width(const std::vector<double>& sorted)
{
    const double range = sorted.back() - sorted.front();
    if (range == 0) {
        return kOnlyStep;
    }
    const double middle = sorted[sorted.size() * 3 / 4] - sorted[sorted.size() / 4];
    const double wanted = 2 * middle / std::cbrt(static_cast<double>(sorted.size()));
    return round_up(std::max(wanted, range / kMostSteps));
}

/// Bars over steps of the numbers, which are logarithms for `isLogarithmic`.
void add_steps(const std::vector<double>& sorted, bool isLogarithmic, Picture* picture)
{
    const double width = step_width(sorted);
    std::map<double, std::size_t> counts;
    for (const double number : sorted) {
        ++counts[std::floor(number / width)];
    }
    Picture::Series series;
    for (const auto& [step, count] : counts) {
        const double middle = (step + 0.5) * width;
        series.x.push_back(isLogarithmic ? std::pow(10.0, middle) : middle);
        series.y.push_back(static_cast<double>(count));
    }
    picture->halfWidth = isLogarithmic ? std::pow(10.0, width / 2) : width / 2;
    picture->series.push_back(std::move(series));
}

/// The numbers that there are, or their logarithms, sorted; zeros, which have none, are counted.
std::vector<double>
sorted_numbers(const ValueSample& sample, bool isLogarithmic, std::size_t* zeros)
{
    std::vector<double> numbers;
    for (const double value : sample.values) {
        if (isLogarithmic && value == 0) {
            ++*zeros;
        } else if (!std::isnan(value)) {
            numbers.push_back(isLogarithmic ? std::log10(std::abs(value)) : value);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

void add_bars(std::vector<Bar> bars, Picture* picture)
{
    picture->halfWidth = 0.4;
    picture->series.push_back(series_of_bars(bars));
    for (Bar& bar : bars) {
        picture->x.labels.push_back(std::move(bar.label));
    }
}
} // namespace

Picture distribution_picture(
    const ValueSample& sample,
    const std::string& keyword,
    bool isLogarithmic,
    std::size_t* zeros)
{
    Picture picture;
    picture.style = Picture::Style::Bars;
    picture.y = {sample.isOfPoints ? "points" : "records", false, {}, true};
    const bool hasLostSigns =
        isLogarithmic && std::any_of(sample.values.begin(), sample.values.end(), [](double value) {
            return value < 0;
        });
    picture.x.title = sample.axis.isMagnitude || hasLostSigns ? "|" + keyword + "|" : keyword;
    if (!sample.axis.labels.empty()) {
        add_bars(text_bars(sample), &picture);
        return picture;
    }
    const std::vector<double> numbers = sorted_numbers(sample, isLogarithmic, zeros);
    std::vector<Bar> bars = isLogarithmic ? std::vector<Bar>() : number_bars(numbers);
    if (!bars.empty()) {
        add_bars(std::move(bars), &picture);
    } else if (!numbers.empty()) {
        add_steps(numbers, isLogarithmic, &picture);
    }
    return picture;
}
} // namespace dbapi
