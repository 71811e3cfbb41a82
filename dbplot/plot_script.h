#pragma once

#include "dbplot/picture.h"

#include <string>

namespace dbapi {
/// A gnuplot script that draws the picture, with its data; it sets neither terminal nor output.
/// Texts are data to gnuplot, whatever stands in them.
std::string plot_script(const Picture& picture);
} // namespace dbapi
