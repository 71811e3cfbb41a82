#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Appends the pieces of `text` between delimiters to `out`, untrimmed. An empty text appends
/// nothing, a leading delimiter and two adjacent ones give an empty piece, a trailing one gives
/// none. Linear in the text.
void dbapi_tokenize(std::vector<std::string>& out, const std::string& text, char delimiter);

namespace dbapi {
/// The form in which vocabularies and keyword maps are searched: without leading blanks, ASCII
/// letters in upper case. Trailing blanks are kept.
std::string normalised(std::string_view text);

/// `text` between double quotes, as error messages show what the user wrote.
std::string quoted(std::string_view text);

/// The part of `text` without blanks at both ends. It points into `text`, also when nothing is
/// left.
std::string_view trimmed_view(std::string_view text);
} // namespace dbapi
