#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi {
/// The text as it may go to a terminal, on one line: control characters, marks that turn the
/// direction of writing and bytes that are not UTF-8 appear as escapes ("\n", "\x1b", "\u202e").
std::string display_text(std::string_view text);

/// "1 file", "2 files".
std::string counted(std::size_t count, const std::string& thing);

/// "a, b, c", or with another word before the last one "a, b or c".
std::string listed(const std::vector<std::string>& texts, const std::string& beforeLast = ", ");

/// The number of columns of a terminal the text takes, which has been through `display_text`.
std::size_t display_width(std::string_view text);

/// The longest beginning of the text that takes at most `width` columns.
std::string_view display_prefix(std::string_view text, std::size_t width);

/// The text between the escapes that make it bold on a terminal.
std::string bold_text(const std::string& text);

/// The text as `display_text` gives it, cut to `width` columns, with "..." at its end, when it is
/// wider.
std::string display_cut(std::string_view text, std::size_t width);
} // namespace dbapi
