#pragma once

#include "dbsuggest/data_request.h"

#include <string>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace dbapi::tool {
/// Tells whether and how values are drawn.
struct PlotOptions
{
    /// The picture, "....svg" or "....png", or the script, "....gp"; empty: nothing is drawn.
    std::string file;
    bool isXLogarithmic = false;
    bool isYLogarithmic = false;
};

/// Adds `--plot`, `--logx` and `--logy`. `options` outlives the app.
void add_plot_options(CLI::App& arguments, PlotOptions* options);

/// Draws the last keyword over the first, or the distribution of a single one. False when there is
/// nothing to draw; no file is written then. Throws `CommandFailure`.
bool plot_values(const DataRequest& request, const PlotOptions& options);
} // namespace dbapi::tool
