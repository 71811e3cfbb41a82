#pragma once

#include <string>

namespace dbapi {
/// What was written against the rules of query strings, and what says the same by these rules.
struct Rewriting
{
    /// The rule, in a sentence.
    std::string reason;
    /// The text that follows it; empty where only the writer knows it.
    std::string text;
    /// Whether `text` needs braces when it stands beside other terms.
    bool isCompound = false;
};
} // namespace dbapi
