#pragma once

#include <string>

// Pictures as files, drawn by the program gnuplot. Each call returns an empty text on success, and
// otherwise why there is no file, in whole sentences. File names are UTF-8.

namespace dbapi {
/// Draws a script (see plot_script.h) into an image file whose name ends in ".svg" or ".png"; any
/// other name is drawn as SVG. The file is replaced only once the image is complete. Waits for
/// gnuplot, without a limit of time, and ignores the user's settings of it.
std::string draw_with_gnuplot(const std::string& script, const std::string& file);

/// Writes the script itself, with a remark on how to use it, so that it can be changed and drawn
/// elsewhere. Needs no gnuplot. The file is replaced only once it is complete.
std::string keep_script(const std::string& script, const std::string& file);

/// The text that `draw_with_gnuplot` returns when gnuplot is not in the search path; empty when it
/// is.
std::string missing_gnuplot();
} // namespace dbapi
