#pragma once

#include "dbif/connection/connection.h"

#include <string>
#include <vector>

namespace dbapi {
/// The keywords that name one key or fixed column each, of the records of a table, or of all when
/// `table` is empty: a key's name where no other key has it, else its function form.
std::vector<std::string>
known_keywords(const DBIF_Connection& connection, const std::string& table = {});

/// How a query string that somebody is typing may go on: each text is the whole query string with
/// its last word complete. That word is a keyword, a keyword with the comparators that fit it, or a
/// value that the latest records hold, as a query string has to write it. Values on the points of
/// setups, and those that no query string can write, are left out; of more than 1,000 values the
/// first are given, of texts the first from what was typed on. None
/// where nothing fits or the keyword is not known. Throws `DBIF_Exception` on a database error.
std::vector<std::string>
query_completions(const DBIF_Connection& connection, const std::string& query);
} // namespace dbapi
