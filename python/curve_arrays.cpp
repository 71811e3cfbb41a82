#include "dbapi/db_curves.h"
#include "dbplot/curve_picture.h"
#include "dbplot/picture.h"

#include "python/bindings.h"
#include "python/column_arrays.h"
#include "python/library_call.h"
#include "python/python_texts.h"

#include <memory>
#include <utility>

namespace dbapi::python {
namespace {
/// A picture shows no more, and more of them are slow to draw.
constexpr std::size_t kMostPoints = 50'000;

py::array numbers_of(const std::vector<double>& numbers, py::handle owner)
{
    return array_over(py::dtype::of<double>(), numbers.size(), numbers.data(), owner);
}

CurveSet read_curves(
    const std::string& name,
    const std::vector<std::string>& keywords,
    const std::string& query)
{
    CurveSet curves;
    call_library(name, [&](std::string* errors) {
        return db_get_curves(name, keywords, &curves, query, errors);
    });
    return curves;
}

py::dict axis_dict(const CurveAxis& axis)
{
    using namespace py::literals;
    return py::dict(
        "labels"_a = py::tuple(text_list(axis.labels)), "is_magnitude"_a = axis.isMagnitude);
}

/// The curves, each as (x, y, parameters, setup), and what they have in common.
py::dict curves(const py::object& connection, const py::sequence& keywords, const py::object& query)
{
    using namespace py::literals;
    const auto set = std::make_shared<const CurveSet>(read_curves(
        text_of(connection, "The connection"), texts_of(keywords, "A keyword"),
        text_of(query, "The query")));
    const py::capsule owner = owner_of(set);
    py::list list;
    for (const Curve& curve : set->curves) {
        list.append(py::make_tuple(
            numbers_of(curve.x, owner), numbers_of(curve.y, owner),
            py::tuple(text_list(curve.parameters)), curve.setup));
    }
    py::list parameters;
    for (const CurveParameter& parameter : set->parameters) {
        parameters.append(py::make_tuple(text_object(parameter.name), parameter.isNumber));
    }
    return py::dict(
        "curves"_a = list, "parameters"_a = parameters, "x"_a = axis_dict(set->x),
        "y"_a = axis_dict(set->y), "is_swept"_a = set->isSwept,
        "setups_left_out"_a = set->setupsLeftOut);
}

const char* name_of(Picture::Style style)
{
    switch (style) {
    case Picture::Style::Lines:
        return "lines";
    case Picture::Style::Points:
        return "points";
    case Picture::Style::Bars:
        break;
    }
    return "bars";
}

/// A picture with what there is to say about it.
struct NotedPicture
{
    Picture picture;
    std::string legendNote;
    std::size_t setupsLeftOut = 0;
    std::size_t pointsLeftOut = 0;
    std::size_t points = 0;
};

NotedPicture draw_curves(
    const std::string& name,
    const std::vector<std::string>& keywords,
    const std::string& query,
    bool isXLogarithmic,
    bool isYLogarithmic)
{
    NotedPicture drawn;
    CurveSet set = read_curves(name, keywords, query);
    drawn.setupsLeftOut = set.setupsLeftOut;
    drawn.picture = curve_picture(std::move(set), keywords, &drawn.legendNote);
    drawn.picture.x.isLogarithmic = isXLogarithmic;
    drawn.picture.y.isLogarithmic = isYLogarithmic;
    drawn.pointsLeftOut = fit_to_axes(&drawn.picture);
    drawn.points = thin_out(&drawn.picture, kMostPoints);
    return drawn;
}

NotedPicture draw_distribution(
    const std::string& name,
    const std::string& keyword,
    const std::string& query,
    bool isXLogarithmic,
    bool isYLogarithmic)
{
    NotedPicture drawn;
    ValueSample sample;
    call_library(name, [&](std::string* errors) {
        return db_get_value_sample(name, keyword, &sample, query, errors);
    });
    drawn.picture = distribution_picture(sample, keyword, isXLogarithmic, &drawn.pointsLeftOut);
    drawn.picture.x.isLogarithmic = isXLogarithmic;
    drawn.picture.y.isLogarithmic = isYLogarithmic;
    drawn.points = count_points(drawn.picture);
    return drawn;
}

py::dict picture_axis(const Picture::Axis& axis)
{
    using namespace py::literals;
    return py::dict(
        "title"_a = text_object(axis.title), "labels"_a = py::tuple(text_list(axis.labels)),
        "is_count"_a = axis.isCount);
}

py::dict picture(
    const py::object& connection,
    const py::sequence& keywords,
    const py::object& query,
    bool isXLogarithmic,
    bool isYLogarithmic)
{
    using namespace py::literals;
    const std::string name = text_of(connection, "The connection");
    const std::vector<std::string> texts = texts_of(keywords, "A keyword");
    const std::string queryText = text_of(query, "The query");
    NotedPicture drawn =
        texts.size() == 1
            ? draw_distribution(name, texts.front(), queryText, isXLogarithmic, isYLogarithmic)
            : draw_curves(name, texts, queryText, isXLogarithmic, isYLogarithmic);
    const std::size_t shown = count_points(drawn.picture);
    const auto kept = std::make_shared<const Picture>(std::move(drawn.picture));
    const py::capsule owner = owner_of(kept);
    py::list series;
    for (const Picture::Series& one : kept->series) {
        series.append(py::make_tuple(
            text_object(one.label), numbers_of(one.x, owner), numbers_of(one.y, owner), one.colour,
            one.dashes));
    }
    return py::dict(
        "style"_a = name_of(kept->style), "legend_title"_a = text_object(kept->legendTitle),
        "x"_a = picture_axis(kept->x), "y"_a = picture_axis(kept->y), "series"_a = series,
        "half_width"_a = kept->halfWidth, "legend_note"_a = text_object(drawn.legendNote),
        "setups_left_out"_a = drawn.setupsLeftOut, "points_left_out"_a = drawn.pointsLeftOut,
        "points"_a = drawn.points, "points_shown"_a = shown);
}
} // namespace

void bind_curves(py::module_& module)
{
    module.def("curves", &curves, py::arg("connection"), py::arg("keywords"), py::arg("query"));
    module.def(
        "picture", &picture, py::arg("connection"), py::arg("keywords"), py::arg("query"),
        py::arg("logx"), py::arg("logy"));
}
} // namespace dbapi::python
