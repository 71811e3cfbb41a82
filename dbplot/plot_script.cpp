#include "dbplot/plot_script.h"

#include "dbif/host/host_number.h"
#include "dbplot/axis_ticks.h"
#include "dbsuggest/display_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace dbapi {
namespace {
/// More labels along an axis of texts cannot be read.
constexpr std::size_t kMostLabels = 60;
/// More, and longer ones, are written at an angle; with more labels, upright.
constexpr std::size_t kMostLevelLetters = 120;
constexpr std::size_t kMostSlantedLabels = 18;
/// With longer labels the legend stands below the curves.
constexpr std::size_t kLongLabel = 36;
/// A curve with at most this many points shows each of them.
constexpr std::size_t kFewPoints = 25;

/// In double quotes, with octal escapes for whatever gnuplot would read as something else there: in
/// single quotes, it takes two adjacent quotes of a text wrong. Control characters appear as
/// escapes, so that a text has one line.
std::string quoted_for_gnuplot(const std::string& text)
{
    constexpr std::string_view kSpecial = "\"\\`'@";
    std::string quoted = "\"";
    for (const char letter : display_text(text)) {
        if (kSpecial.find(letter) == std::string_view::npos) {
            quoted += letter;
            continue;
        }
        std::array<char, 8> escape{};
        std::snprintf(escape.data(), escape.size(), "\\%03o", static_cast<unsigned>(letter));
        quoted += escape.data();
    }
    return quoted + "\"";
}

/// A point of the way from dark blue over green to yellow, even in brightness.
std::string colour_text(double place)
{
    struct Colour
    {
        double red, green, blue;
    };

    static constexpr std::array kWay{
        Colour{68, 1, 84}, Colour{59, 82, 139}, Colour{33, 145, 140}, Colour{74, 181, 92},
        Colour{190, 190, 30}};
    const double scaled = std::clamp(place, 0.0, 1.0) * (kWay.size() - 1);
    const auto before = std::min(static_cast<std::size_t>(scaled), kWay.size() - 2);
    const double part = scaled - static_cast<double>(before);
    const auto mixed = [&](double Colour::*channel) {
        return static_cast<int>(std::lround(
            kWay.at(before).*channel * (1 - part) + kWay.at(before + 1).*channel * part));
    };
    std::array<char, 16> text{};
    std::snprintf(
        text.data(), text.size(), "#%02x%02x%02x", static_cast<unsigned>(mixed(&Colour::red)),
        static_cast<unsigned>(mixed(&Colour::green)), static_cast<unsigned>(mixed(&Colour::blue)));
    return text.data();
}

struct Range
{
    double low = 0;
    double high = 1;
};

Range range_of(const Picture& picture, std::vector<double> Picture::Series::*numbers)
{
    Range range{std::nan(""), std::nan("")};
    for (const Picture::Series& series : picture.series) {
        for (const double number : series.*numbers) {
            range.low = std::fmin(range.low, number);
            range.high = std::fmax(range.high, number);
        }
    }
    return std::isnan(range.low) ? Range{} : range;
}

AxisTicks text_ticks(const std::vector<std::string>& labels)
{
    AxisTicks ticks{-0.6, static_cast<double>(labels.size()) - 0.4, {}};
    const std::size_t every = (labels.size() + kMostLabels - 1) / kMostLabels;
    for (std::size_t i = 0; i < labels.size(); i += every) {
        ticks.ticks.push_back({static_cast<double>(i), labels[i]});
    }
    return ticks;
}

AxisTicks ticks_of(const Picture::Axis& axis, Range range)
{
    if (!axis.labels.empty()) {
        return text_ticks(axis.labels);
    }
    return axis.isLogarithmic ? logarithmic_ticks(range.low, range.high)
                              : linear_ticks(range.low, range.high, axis.isCount ? 1 : 0);
}

/// How labels along the x axis are turned, so that they do not run into each other.
std::string turned(const AxisTicks& ticks)
{
    std::size_t letters = 0;
    for (const AxisTicks::Tick& tick : ticks.ticks) {
        letters += tick.label.empty() ? 0 : display_width(tick.label) + 2;
    }
    if (letters <= kMostLevelLetters) {
        return "";
    }
    return ticks.ticks.size() > kMostSlantedLabels ? "rotate by 90 right " : "rotate by -40 ";
}

/// "set xrange ...", "set xtics ..." for the axis of that letter.
std::string axis_commands(const std::string& letter, const Picture::Axis& axis, Range range)
{
    using dbif::double_text;
    const AxisTicks ticks = ticks_of(axis, range);
    std::string list;
    for (const AxisTicks::Tick& tick : ticks.ticks) {
        list += (list.empty() ? "" : ", ") + quoted_for_gnuplot(tick.label) + " " +
                double_text(tick.at) + (tick.label.empty() ? " 1" : "");
    }
    return "set " + letter + "label " + quoted_for_gnuplot(axis.title) + "\n" +
           (axis.isLogarithmic ? "set logscale " + letter + "\n" : "") + "set " + letter +
           "range [" + double_text(ticks.low) + ":" + double_text(ticks.high) + "]\nset " + letter +
           "tics " + (letter == "x" ? turned(ticks) : "") + "(" + list + ")\n";
}

/// The reach of bars, which gnuplot draws from the data and not from the ticks.
Range bar_range(const Picture& picture)
{
    Range range = range_of(picture, &Picture::Series::x);
    if (picture.x.isLogarithmic) {
        return {range.low / picture.halfWidth, range.high * picture.halfWidth};
    }
    return {range.low - picture.halfWidth, range.high + picture.halfWidth};
}

bool has_long_label(const Picture& picture)
{
    return std::any_of(
        picture.series.begin(), picture.series.end(),
        [](const Picture::Series& series) { return display_width(series.label) > kLongLabel; });
}

std::string data_block(const Picture& picture)
{
    std::string block = "$data << END_OF_DATA\n";
    std::array<char, dbif::kLongestDouble> buffer{};
    const auto add = [&](double number, char behind) {
        block.append(buffer.data(), dbif::format_double(number, buffer.data()));
        block += behind;
    };
    for (const Picture::Series& series : picture.series) {
        for (std::size_t point = 0; point < series.x.size(); ++point) {
            add(series.x[point], ' ');
            add(series.y[point], '\n');
        }
        block += "\n\n";
    }
    return block + "END_OF_DATA\n";
}

std::string series_style(const Picture& picture, const Picture::Series& series)
{
    const std::string colour = "linecolor rgb '" + colour_text(series.colour) + "'";
    switch (picture.style) {
    case Picture::Style::Points:
        return "using 1:2 with points pointtype 7 pointsize 0.6 " + colour;
    case Picture::Style::Bars: {
        const std::string half = dbif::double_text(picture.halfWidth);
        const std::string reach = picture.x.isLogarithmic ? "($1/" + half + "):($1*" + half + ")"
                                                          : "($1-" + half + "):($1+" + half + ")";
        // A bar has to begin somewhere above 0 on a logarithmic axis.
        return "using 1:2:" + reach + ":(" + (picture.y.isLogarithmic ? "0.1" : "0") +
               "):2 with boxxyerror linecolor rgb '" + colour_text(0.3) +
               "' fillstyle solid 0.75 border";
    }
    case Picture::Style::Lines:
        break;
    }
    const bool hasPoints = series.x.size() <= kFewPoints;
    return std::string("using 1:2 with ") +
           (hasPoints ? "linespoints pointtype 7 pointsize 0.4 " : "lines ") + "linewidth 1.5 " +
           colour + " dashtype " + std::to_string(series.dashes + 1);
}

std::string plot_command(const Picture& picture)
{
    std::string command = "plot ";
    for (std::size_t i = 0; i < picture.series.size(); ++i) {
        const Picture::Series& series = picture.series[i];
        command += (i == 0 ? "" : ", \\\n     ") + std::string("$data index ") + std::to_string(i) +
                   " " + series_style(picture, series) + " " +
                   (series.label.empty() ? "notitle" : "title " + quoted_for_gnuplot(series.label));
    }
    return command + "\n";
}
} // namespace

std::string plot_script(const Picture& picture)
{
    const bool isBars = picture.style == Picture::Style::Bars;
    Range heights = range_of(picture, &Picture::Series::y);
    if (isBars) {
        heights.low = picture.y.isLogarithmic ? 0.5 : 0;
    }
    std::string script = "reset\nset encoding utf8\nset termoption noenhanced\n";
    if (!picture.title.empty()) {
        script += "set title " + quoted_for_gnuplot(picture.title) + "\n";
    }
    script += axis_commands(
        "x", picture.x, isBars ? bar_range(picture) : range_of(picture, &Picture::Series::x));
    script += axis_commands("y", picture.y, heights);
    script += "set border 3\nset tics nomirror out\nset grid linetype 1 linecolor rgb '#dddddd'\n";
    script += std::string("set key ") + (has_long_label(picture) ? "below" : "outside right top") +
              " Left reverse samplen 2";
    if (!picture.legendTitle.empty()) {
        script += " title " + quoted_for_gnuplot(picture.legendTitle) + " left";
    }
    return script + "\n" + data_block(picture) + plot_command(picture);
}
} // namespace dbapi
