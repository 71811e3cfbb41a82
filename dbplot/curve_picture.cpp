#include "dbplot/curve_picture.h"

#include "dbif/host/host_number.h"
#include "dbplot/axis_ticks.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <tuple>

namespace dbapi {
namespace {
constexpr std::size_t kMostNamed = 24;
/// Names as long as those of devices take more room.
constexpr std::size_t kMostLongNamed = 12;
constexpr std::size_t kLongName = 24;
/// Curves differ in their dashes by a parameter with at most this many values.
constexpr std::size_t kMostDashes = 4;

/// Gives each key its place in the order.
template <typename Key>
void number_in_order(std::map<Key, std::size_t>* places)
{
    std::size_t next = 0;
    for (auto& [key, place] : *places) {
        place = next++;
    }
}

/// The values of a parameter, as places in their order: numbers by size, texts by their bytes, none
/// first.
std::vector<std::size_t> ranks_of(const CurveSet& set, std::size_t parameter)
{
    using Place = std::tuple<bool, double, std::string>;
    const auto placeOf = [&](const Curve& curve) {
        const std::string& text = curve.parameters[parameter];
        const bool isNumber = set.parameters[parameter].isNumber && !text.empty();
        return Place{!text.empty(), isNumber ? dbif::read_engineering_number(text) : 0, text};
    };
    std::map<Place, std::size_t> places;
    for (const Curve& curve : set.curves) {
        places[placeOf(curve)];
    }
    number_in_order(&places);
    std::vector<std::size_t> ranks;
    for (const Curve& curve : set.curves) {
        ranks.push_back(places[placeOf(curve)]);
    }
    return ranks;
}

/// The parameters that tell curves apart which those before them do not, with each curve's rank in
/// them.
struct Telling
{
    std::vector<std::size_t> parameters;
    std::vector<std::vector<std::size_t>> ranks;

    [[nodiscard]] std::vector<std::size_t> ranksOf(std::size_t curve) const
    {
        std::vector<std::size_t> all;
        for (const std::vector<std::size_t>& ranksInOne : ranks) {
            all.push_back(ranksInOne[curve]);
        }
        return all;
    }
};

Telling find_telling(const CurveSet& set)
{
    Telling telling;
    std::size_t groups = 1;
    for (std::size_t i = 0; i < set.parameters.size() && groups < set.curves.size(); ++i) {
        telling.parameters.push_back(i);
        telling.ranks.push_back(ranks_of(set, i));
        std::set<std::vector<std::size_t>> distinct;
        for (std::size_t curve = 0; curve < set.curves.size(); ++curve) {
            distinct.insert(telling.ranksOf(curve));
        }
        if (distinct.size() > groups) {
            groups = distinct.size();
        } else {
            telling.parameters.pop_back();
            telling.ranks.pop_back();
        }
    }
    return telling;
}

std::string label_of(const CurveSet& set, const Telling& telling, const Curve& curve)
{
    std::string label;
    for (const std::size_t i : telling.parameters) {
        const std::string& text = curve.parameters[i];
        if (text.empty()) {
            continue;
        }
        label += label.empty() ? "" : ", ";
        label += set.parameters[i].isNumber
                     ? set.parameters[i].name + "=" +
                           engineering_text(dbif::read_engineering_number(text))
                     : text;
    }
    return label;
}

/// The parameter, as its place in `telling`, that dashes show beside the colour of the others;
/// none when a colour for each curve tells as much.
std::size_t dashed_parameter(const Telling& telling)
{
    const auto none = telling.parameters.size();
    std::size_t fewest = kMostDashes + 1;
    std::size_t found = none;
    for (std::size_t i = 0; none > 1 && i < none; ++i) {
        const std::size_t values =
            *std::max_element(telling.ranks[i].begin(), telling.ranks[i].end()) + 1;
        if (values < fewest) {
            fewest = values;
            found = i;
        }
    }
    return found;
}

/// Gives each series its colour and dashes. `order` holds the curves in the order of the series.
void style_series(
    const Telling& telling,
    const std::vector<std::size_t>& order,
    std::vector<Picture::Series>* series)
{
    const std::size_t dashed = dashed_parameter(telling);
    std::map<std::vector<std::size_t>, std::size_t> colours;
    const auto colourOf = [&](std::size_t curve) {
        std::vector<std::size_t> ranks = telling.ranksOf(curve);
        if (dashed < ranks.size()) {
            ranks[dashed] = 0;
        }
        return ranks;
    };
    for (const std::size_t curve : order) {
        colours[colourOf(curve)];
    }
    number_in_order(&colours);
    for (std::size_t i = 0; i < order.size(); ++i) {
        (*series)[i].colour = static_cast<double>(colours[colourOf(order[i])]) /
                              static_cast<double>(std::max<std::size_t>(1, colours.size() - 1));
        if (dashed < telling.parameters.size()) {
            (*series)[i].dashes = static_cast<int>(telling.ranks[dashed][order[i]]);
        }
    }
}

std::string axis_title(const std::string& keyword, const CurveAxis& axis)
{
    return axis.isMagnitude ? "|" + keyword + "|" : keyword;
}
} // namespace

Picture curve_picture(CurveSet curves, const std::vector<std::string>& keywords, std::string* note)
{
    const Telling telling = find_telling(curves);
    std::vector<std::size_t> order(curves.curves.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&telling](std::size_t a, std::size_t b) {
        return telling.ranksOf(a) < telling.ranksOf(b);
    });
    Picture picture;
    picture.style = curves.isSwept ? Picture::Style::Lines : Picture::Style::Points;
    picture.x = {axis_title(keywords.front(), curves.x), false, std::move(curves.x.labels), false};
    picture.y = {axis_title(keywords.back(), curves.y), false, {}, false};
    std::vector<std::string> labels;
    std::size_t longest = 0;
    for (const std::size_t curve : order) {
        labels.push_back(label_of(curves, telling, curves.curves[curve]));
        longest = std::max(longest, labels.back().size());
    }
    const std::size_t most = longest > kLongName ? kMostLongNamed : kMostNamed;
    const std::size_t every = (order.size() + most - 1) / most;
    for (std::size_t i = 0; i < order.size(); ++i) {
        Curve& curve = curves.curves[order[i]];
        picture.series.push_back(
            {i % every == 0 ? std::move(labels[i]) : std::string(), std::move(curve.x),
             std::move(curve.y)});
    }
    style_series(telling, order, &picture.series);
    if (every > 1) {
        picture.legendTitle = "1 of " + std::to_string(every) + " curves";
        *note = "The legend names one of " + std::to_string(every) + " curves.";
    }
    return picture;
}
} // namespace dbapi
