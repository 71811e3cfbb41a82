#pragma once

#include "dbif/engine/read_trace.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// The indexes that serve a statement, each once; "primary key" is one of a table.
std::vector<std::string> indexes_of(const dbif::TracedStatement& statement);

/// The record tables and their companions that a statement passes over from end to end.
std::vector<std::string> scanned_tables(const dbif::TracedStatement& statement);

/// A statement with its plan, for people, within `width` columns: long lists of numbers are
/// shortened.
std::string statement_text(const dbif::TracedStatement& statement, std::size_t width);

/// A time as "420 us", "4.2 ms" or "1.3 s".
std::string time_text(double seconds);
} // namespace dbapi
