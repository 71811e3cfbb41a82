#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// Which known name somebody meant who wrote an unknown one. Letter case does not count (of ASCII
// letters); other letters count as their bytes. Nothing here fails.

namespace dbapi {
/// The number of letters that have to be typed, left out, replaced or swapped with their neighbour
/// to get from one to the other.
std::size_t edit_distance(std::string_view first, std::string_view second);

/// Those of the candidates that somebody who wrote `text` may have meant, the likeliest first, at
/// most `count`: the fewer edits the nearer, then those that begin with the text. None when nothing
/// is near enough, and for a text of more than 200 bytes.
std::vector<std::string>
nearest_texts(const std::string& text, const std::set<std::string>& candidates, std::size_t count);

/// " Did you mean a, b or c?", to follow a sentence; empty when there is nothing to suggest.
std::string suggestion(const std::vector<std::string>& texts);
} // namespace dbapi
