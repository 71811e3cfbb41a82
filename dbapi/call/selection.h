#pragma once

#include "dbapi/words/fault.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <memory>
#include <string>

namespace dbapi {
/// The records that a call is about: those of a connection that satisfy a condition. Holds the
/// connection open and the condition alive.
struct Selection
{
    DBIF_Connection connection;
    std::shared_ptr<const DBIF_QueryCondition> condition;
    /// Superseded records do not count.
    bool latestOnly = true;
};

/// The open connection to the stored database of this name: the cache's own when it holds that one,
/// otherwise a new one. Throws `FaultError`.
DBIF_Connection connection_for_call(const std::string& name);

/// The records that a query string selects: with the cache's own condition when it holds one for
/// this connection and query string, otherwise with a new one. Throws `FaultError`.
Selection select_on(DBIF_Connection connection, const std::string& query);

/// Both in one step.
Selection select_records_of_call(const std::string& connectionName, const std::string& query);
} // namespace dbapi
