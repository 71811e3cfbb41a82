#pragma once

#include "dbapi/words/fault.h"

#include <string>
#include <vector>

namespace dbapi {
/// The faulty text on one line with a mark below the place, cut to the surroundings of the place;
/// then the suggestions, if there are any. Empty for a fault without a place.
std::string fault_lines(const Fault& fault, const std::vector<std::string>& suggestions);
} // namespace dbapi
