#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"

namespace dbapi {
/// Why a read that has been explained gives no row: which term leaves nothing, or which terms have
/// nothing in common; and what would give some. Empty for one that gives rows. Asks the database.
NothingFound explain_nothing(const DBIF_Connection& connection, const Explanation& explanation);
} // namespace dbapi
