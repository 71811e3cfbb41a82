#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi {
/// How many letters have to be typed, left out, replaced or swapped with their neighbour to get
/// from one to the other, in any letter case.
std::size_t edit_distance(std::string_view first, std::string_view second);

/// Those of the candidates that somebody who wrote `text` may have meant, the likeliest first, at
/// most `count`.
std::vector<std::string>
nearest_texts(const std::string& text, const std::set<std::string>& candidates, std::size_t count);

/// " Did you mean a, b or c?", or nothing when there is nothing to suggest.
std::string suggestion(const std::vector<std::string>& texts);
} // namespace dbapi
