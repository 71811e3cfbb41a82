#pragma once

#include <string>

namespace dbapi::tool {
/// A word of a command line as it was typed so far: its text, and the quotes that it began with.
struct TypedWord
{
    std::string text;
    /// "'", "\"" or, without quotes, 0.
    char quote = 0;
};

TypedWord read_typed_word(const std::string& typed);

/// The text as it has to stand on the command line inside such quotes, which the shell itself
/// writes, or without quotes, with escapes.
std::string written_word(const std::string& text, char quote);
} // namespace dbapi::tool
