#pragma once

#include "dbui/connection_record.h"

#include <string>

namespace dbui {
/// Says what keeps a record from being stored: the connections file holds UTF-8 text without
/// control characters, which other readers of XML refuse or change. The result is a sentence with a
/// line end; empty when nothing does. A password may hold any bytes, because it is stored
/// scrambled.
std::string fault_of_record(const DbuiConnection& record);
} // namespace dbui
