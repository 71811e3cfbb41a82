#include "tools/dbapi/output/plot_output.h"

#include "dbapi/db_curves.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbplot/curve_picture.h"
#include "dbplot/gnuplot.h"
#include "dbplot/plot_script.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/known_keys.h"

#include "tools/dbapi/arguments/command_failure.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <utility>

namespace dbapi::tool {
namespace {
/// A picture shows no more, and files of more are slow to open.
constexpr std::size_t kMostPoints = 50'000;

std::string description(const Picture& picture)
{
    switch (picture.style) {
    case Picture::Style::Lines:
        return counted(picture.series.size(), "curve");
    case Picture::Style::Points:
        return counted(count_points(picture), "point");
    case Picture::Style::Bars:
        break;
    }
    return "the distribution of " + picture.x.title;
}

bool is_script(const std::string& file)
{
    return file.ends_with(".gp");
}

void set_scales(const PlotOptions& options, Picture* picture)
{
    if (options.isXLogarithmic && !picture->x.labels.empty()) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            picture->x.title + " holds texts, which --logx cannot put on a logarithmic axis.");
    }
    picture->x.isLogarithmic = options.isXLogarithmic;
    picture->y.isLogarithmic = options.isYLogarithmic;
}

void note_left_out(std::size_t points, std::string* notes)
{
    if (points > 0) {
        *notes += "\n" + counted(points, "point") +
                  " left out: a logarithmic axis shows only what is above 0.";
    }
}

void require_none(const std::string& fault)
{
    if (!fault.empty()) {
        throw CommandFailure(ExitCode::File, fault);
    }
}

/// The picture of several keywords; what there is to say about it goes to `notes`.
Picture draw_curves(const DataRequest& request, const PlotOptions& options, std::string* notes)
{
    CurveSet curves;
    std::string errors;
    if (!db_get_curves(request.connection, request.keywords, &curves, request.query, &errors)) {
        throw_call_failure(request, errors);
    }
    if (curves.setupsLeftOut > 0) {
        *notes += "\n" + counted(curves.setupsLeftOut, "setup") +
                  " left out: " + (curves.setupsLeftOut == 1 ? "it does" : "they do") +
                  " not sweep " + request.keywords.front() + ".";
    }
    std::string legend;
    Picture picture = curve_picture(std::move(curves), request.keywords, &legend);
    *notes += legend.empty() ? "" : "\n" + legend;
    set_scales(options, &picture);
    note_left_out(fit_to_axes(&picture), notes);
    const std::size_t all = thin_out(&picture, kMostPoints);
    const std::size_t shown = count_points(picture);
    if (shown < all) {
        *notes += "\n" + std::to_string(shown) + " of " + std::to_string(all) +
                  " points drawn: of each short stretch the first, lowest, highest and last.";
    }
    return picture;
}

Picture
draw_distribution(const DataRequest& request, const PlotOptions& options, std::string* notes)
{
    ValueSample sample;
    std::string errors;
    const std::string& keyword = request.keywords.front();
    if (!db_get_value_sample(request.connection, keyword, &sample, request.query, &errors)) {
        throw_call_failure(request, errors);
    }
    std::size_t zeros = 0;
    Picture picture = distribution_picture(sample, keyword, options.isXLogarithmic, &zeros);
    note_left_out(zeros, notes);
    set_scales(options, &picture);
    return picture;
}
} // namespace

void add_plot_options(CLI::App& arguments, PlotOptions* options)
{
    const auto checkFile = [](const std::string& file) {
        const bool isKnown = file.ends_with(".svg") || file.ends_with(".png") || is_script(file);
        return isKnown ? std::string()
                       : "the name of the picture " + dbapi::quoted(file) +
                             " has to end in .svg, .png or (to keep the script) .gp";
    };
    CLI::Option* plot =
        arguments
            .add_option(
                "--plot", options->file,
                "draw the last keyword over the first, or the distribution of one, into a picture "
                "FILE.svg or FILE.png, or keep gnuplot's script FILE.gp")
            ->type_name("FILE")
            ->check(checkFile);
    arguments.add_flag("--logx", options->isXLogarithmic, "with --plot: a logarithmic x axis")
        ->needs(plot);
    arguments.add_flag("--logy", options->isYLogarithmic, "with --plot: a logarithmic y axis")
        ->needs(plot);
    for (const char* other : {"--distinct", "--order", "--desc", "--ids"}) {
        plot->excludes(arguments.get_option(other));
    }
    for (const std::string& other : output_option_names()) {
        plot->excludes(arguments.get_option(other));
    }
}

bool plot_values(const DataRequest& request, const PlotOptions& options)
{
    // Before much is read for nothing.
    require_none(is_script(options.file) ? "" : missing_gnuplot());
    std::string notes;
    Picture picture = request.keywords.size() == 1 ? draw_distribution(request, options, &notes)
                                                   : draw_curves(request, options, &notes);
    picture.title = request.query;
    if (picture.series.empty()) {
        if (!notes.empty()) {
            talk(notes.substr(1));
        }
        return false;
    }
    const std::string script = plot_script(picture);
    require_none(
        is_script(options.file) ? keep_script(script, options.file)
                                : draw_with_gnuplot(script, options.file));
    talk("Drew " + description(picture) + " into " + dbapi::quoted(options.file) + "." + notes);
    return true;
}
} // namespace dbapi::tool
