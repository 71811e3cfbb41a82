#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"

namespace dbapi {
/// Why a read that has been explained gives no row: which term selects nothing, or which terms have
/// no record in common; and what would give some. The cause is `None` for a read that gives rows.
/// Throws `DBIF_Exception` on a database error.
NothingFound explain_nothing(const DBIF_Connection& connection, const Explanation& explanation);
} // namespace dbapi
