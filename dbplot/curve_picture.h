#pragma once

#include "dbapi/db_curves.h"
#include "dbplot/picture.h"

#include <string>
#include <vector>

namespace dbapi {
/// The picture of curves: one series each, ordered and named by what tells them apart. `keywords`
/// are those that the curves were asked for by. A long legend names some of the curves; `note` then
/// tells so.
Picture curve_picture(CurveSet curves, const std::vector<std::string>& keywords, std::string* note);

/// The picture of how the values of a keyword are distributed: a bar for each text (the most
/// frequent first) or for each of few numbers, otherwise for each of even steps, which are even in
/// the logarithm for `isLogarithmic`. With that, signs are dropped and zeros are left out and
/// counted.
Picture distribution_picture(
    const ValueSample& sample,
    const std::string& keyword,
    bool isLogarithmic,
    std::size_t* zeros);
} // namespace dbapi
