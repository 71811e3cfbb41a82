#pragma once

#include "dbapi/words/fault.h"

#include <string>
#include <string_view>

namespace dbapi {
/// A query string taken apart into its command and what follows it.
struct CommandedQuery
{
    /// Tells whether it begins with "ALLDATA:", in any letter case.
    bool isAllData = false;
    /// Behind the command, or all of it, trimmed. It points into the query string.
    std::string_view rest;
};

/// Throws `FaultError` for a query string that has the word ALLDATA anywhere else, be it in a key
/// name or a value. The result lives as long as `query`.
CommandedQuery split_query_command(const std::string& query);
} // namespace dbapi
