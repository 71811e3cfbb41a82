#pragma once

#include "dbexplain/explanation.h"

#include <cstddef>
#include <string>

namespace dbapi {
/// The explanation for people, in lines of at most `width` columns where words allow it; with bold
/// headings, by a terminal's escapes, if `isBold`.
std::string explanation_text(const Explanation& explanation, std::size_t width, bool isBold);
} // namespace dbapi
