#pragma once

#include "dbexplain/explanation.h"

#include <string>

namespace dbapi {
/// The values stored under a key in words, for somebody who compared it with `value` and found
/// nothing: its range and the values nearest to that one. Nothing when that cannot be told.
std::string stored_values_text(
    const std::string& connection,
    const KeyExplanation& key,
    const std::string& value,
    bool latestOnly);
} // namespace dbapi
