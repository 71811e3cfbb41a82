#pragma once

#include "dbexplain/explanation.h"

#include <string>

namespace dbapi {
/// The whole explanation as one JSON object on one line. Times are in seconds.
std::string explanation_json(const Explanation& explanation);
} // namespace dbapi
