#pragma once

#include "dbapi/query/query_syntax.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// A part of a query string that is read without a fault and probably not as it was meant.
struct QueryNote
{
    /// In bytes of the query string.
    std::size_t position = 0;
    std::size_t length = 0;
    /// How it is read, and the rule.
    std::string text;
    /// The whole query string as it was probably meant, which is read without a note; empty where
    /// that cannot be told.
    std::string corrected;
};

/// The first five notes at most on a query string, from left to right: texts that are ignored,
/// values that hold another term ("p AND W=5u", "=p"), patterns with a wild card, and words in the
/// place of a comparator in braces ("{W in 1u,2u}"). Values in single quotes are taken as meant,
/// patterns aside. None for a query string with a fault. Asks no database.
std::vector<QueryNote> notes_on_query(const std::string& query);

/// Why a text is ignored, in a sentence.
std::string why_ignored(IgnoredText::Reason reason);
} // namespace dbapi
