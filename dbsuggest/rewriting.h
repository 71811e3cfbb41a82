#pragma once

#include <string>

namespace dbapi {
/// A text that breaks the rules of query strings, and the text that says the same by them.
struct Rewriting
{
    /// The rule, in a sentence.
    std::string reason;
    /// The text that follows it; empty where only the writer knows it.
    std::string text;
    /// Tells whether `text` needs braces when it stands beside other terms.
    bool isCompound = false;
};
} // namespace dbapi
