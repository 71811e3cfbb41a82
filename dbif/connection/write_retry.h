#pragma once

#include "dbif/connection/connection.h"

#include <functional>

namespace dbif {
/// Runs `work`, a writing transaction from its begin to its commit, and runs it again from the
/// begin, a few times, when another writer was in its way or the connection was lost. Throws the
/// `DBIF_Exception` of the last attempt, or of one that trying again would not help; nothing is
/// half stored then.
void write_with_retries(const DBIF_Connection& connection, const std::function<void()>& work);
} // namespace dbif
