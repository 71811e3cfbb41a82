#pragma once

#include "dbapi/db_curves.h"
#include "dbplot/picture.h"

#include <cstddef>
#include <string>
#include <vector>

// From the numbers that `db_get_curves` and `db_get_value_sample` give to a picture of them.
// Nothing here reads a database or fails.

namespace dbapi {
/// The picture of curves: a series for each, ordered and named by the parameters that tell the
/// curves apart. `keywords` are those that the curves were asked for by; the first names the x axis
/// and the last the y axis. Where there are too many curves for a legend, it names one in so many,
/// and `note`, which must not be null, receives a sentence that says so; otherwise `note` stays.
/// Both axes are linear; set `isLogarithmic` and call `fit_to_axes` for others.
Picture curve_picture(CurveSet curves, const std::vector<std::string>& keywords, std::string* note);

/// The picture of how the values of a keyword are distributed: a bar for each text, the most
/// frequent first, or for each number where they are few, otherwise for each of even steps. With
/// `isLogarithmic` the steps are even in the logarithm; numbers then lose their signs, and zeros
/// are left out and counted in `zeros`, which must not be null: their number is added to it.
Picture distribution_picture(
    const ValueSample& sample,
    const std::string& keyword,
    bool isLogarithmic,
    std::size_t* zeros);
} // namespace dbapi
