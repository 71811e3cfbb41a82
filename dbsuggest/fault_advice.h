#pragma once

#include "dbapi/words/fault.h"
#include "dbsuggest/known_keys.h"

#include <string>
#include <vector>

namespace dbapi {
/// What may have been meant in the place of the faulty text, the likeliest first: keywords of keys
/// that exist, or a term written so that it is understood. `keys` are those of the database that
/// was asked.
std::vector<std::string> suggestions_for(const Fault& fault, const KnownKeys& keys);
} // namespace dbapi
