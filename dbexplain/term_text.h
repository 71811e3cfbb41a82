#pragma once

#include "dbapi/query/query_syntax.h"

#include <string>

namespace dbapi {
/// The part of a keyword that counts: in function form, text before "KEY(" does not (as the T of a
/// NOT).
std::string shown_keyword(const std::string& keyword);

/// A term of a query as it is understood: "W from 1e-06 to 5e-06", "$LOT in 'A', 'B'". `isNumber`:
/// its key holds numbers, which are shown as they were read ("5u" as 5e-06). The term has been
/// accepted by the library.
std::string term_text(const QueryNode& term, bool isNumber);
} // namespace dbapi
