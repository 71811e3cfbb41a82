#pragma once

#include <string>

// NOLINTNEXTLINE(readability-identifier-naming): the library's name
namespace CLI {
class App;
}

namespace dbapi::tool {
/// Adds the argument TABLE, a record table by its name or one of its spellings ("DEV"); what is
/// none is refused with the names that there are. `table` outlives the app and receives the table's
/// name.
void add_table_argument(CLI::App& arguments, std::string* table);
} // namespace dbapi::tool
