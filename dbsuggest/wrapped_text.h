#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dbapi {
/// The text with every line indented by `indent` blanks, and broken at blanks so that it fits
/// `width` columns; a word that is longer stands alone. Ends with a newline, unless it is empty.
std::string wrapped_text(std::string_view text, std::size_t indent, std::size_t width);
} // namespace dbapi
