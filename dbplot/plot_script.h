#pragma once

#include "dbplot/picture.h"

#include <string>

namespace dbapi {
/// A gnuplot script that draws the picture, with its data; it sets neither terminal nor output, so
/// `gnuplot -persist FILE` shows it in a window. Texts of the picture are data to gnuplot: nothing
/// that stands in them is run as a command. A series without points draws nothing. Never fails.
std::string plot_script(const Picture& picture);
} // namespace dbapi
