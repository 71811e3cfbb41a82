#pragma once

#include "dbinfo/database_info.h"

#include <cstddef>
#include <string>

namespace dbapi::tool {
/// What a database holds, for people, in lines of at most `width` columns where that is possible.
/// Of many groups, the largest are named.
std::string info_text(const DatabaseInfo& info, std::size_t width, bool isBold);

/// The same in full, as one JSON object on one line.
std::string info_json(const DatabaseInfo& info);
} // namespace dbapi::tool
