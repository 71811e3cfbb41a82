#pragma once

#include <string>

namespace dbapi::tool {
/// Draws a script with gnuplot into an image file, "....svg" or "....png". The file is replaced
/// only once the image is complete. Throws `CommandFailure`: without gnuplot one that names the
/// package, and what gnuplot says when it fails.
void draw_with_gnuplot(const std::string& script, const std::string& file);

/// Writes the script itself, with a remark on how to use it.
void keep_script(const std::string& script, const std::string& file);

/// Throws the `CommandFailure` of `draw_with_gnuplot` when there is no gnuplot.
void require_gnuplot();
} // namespace dbapi::tool
