#pragma once

#include "dbapi/words/fault.h"
#include "dbsuggest/fault_advice.h"
#include "dbsuggest/query_notes.h"

#include <string>
#include <vector>

// How faults and notes are shown: the text on one line, cut to the surroundings of the place, with
// a mark below the place, then what was probably meant. Without a newline at the end.

namespace dbapi {
/// Empty for a fault without a place.
std::string fault_lines(const Fault& fault, const std::vector<Advice>& advice);

/// The same for a note, behind its text.
std::string note_lines(const std::string& query, const QueryNote& note);
} // namespace dbapi
