#pragma once

#include <string>

namespace dbapi {
/// Draws a script with gnuplot into an image file, "....svg" or "....png". The file is replaced
/// only once the image is complete. Returns why there is none: that gnuplot is not installed, what
/// it complains of, or that the file cannot be written; empty when the image is drawn.
std::string draw_with_gnuplot(const std::string& script, const std::string& file);

/// Writes the script itself, with a remark on how to use it. Returns why not, or an empty text.
std::string keep_script(const std::string& script, const std::string& file);

/// What `draw_with_gnuplot` returns when there is no gnuplot; empty when there is.
std::string missing_gnuplot();
} // namespace dbapi
