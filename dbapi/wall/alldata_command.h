#pragma once

#include <string>
#include <vector>

/// Tells whether the query begins with the command "ALLDATA:", in any letter case. `rest` is then
/// the query behind it, trimmed, and `commands`, when given, holds "ALLDATA". Else both are empty.
/// `rest` must not be null and may be `query` itself.
///
/// A query that has the word anywhere else is refused: the result is false, and the error text goes
/// to `errors`, or to the standard error stream when that is null. Without the word, the result is
/// false and there is no error.
bool dbapi_found_and_removed_alldata_condition_from_query_str(
    const std::string& query,
    std::string* rest,
    std::vector<std::string>* commands,
    std::string* errors);
