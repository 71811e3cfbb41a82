#pragma once

#include <string>

namespace dbapi::tool {
/// Writes to the standard error stream what of a query string is ignored or probably not read as it
/// was meant (`notes_on_query`).
void tell_notes(const std::string& query);
} // namespace dbapi::tool
