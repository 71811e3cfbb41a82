#pragma once

#include "dbsuggest/known_keys.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace dbapi::tool {
/// A place in a query string or keyword where something is wrong.
struct QueryFault
{
    /// The whole text, and the faulty bytes in it.
    std::string text;
    std::size_t position = 0;
    std::size_t length = 0;
    /// What may have been meant.
    std::vector<std::string> suggestions;
};

/// Finds what a library call complained about with `message`, which was given this query string.
/// Nothing when no fault is found in it.
std::optional<QueryFault>
find_query_fault(KnownKeys& keys, const std::string& query, const std::string& message);

/// The same for a keyword by itself.
std::optional<QueryFault> find_keyword_fault(KnownKeys& keys, const std::string& keyword);

/// The text on one line with a mark below the place, cut to the surroundings of the place; then the
/// suggestions, if there are any.
std::string fault_lines(const QueryFault& fault);
} // namespace dbapi::tool
