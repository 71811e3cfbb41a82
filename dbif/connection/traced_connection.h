#pragma once

#include "dbif/connection/connection.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/engine/read_trace.h"

namespace dbif {
/// Attaches a trace to a connection for the length of a scope. One that was attached before is
/// attached again at its end.
class TracedConnection
{
    Q_DISABLE_COPY_MOVE(TracedConnection)

public:
    TracedConnection(DBIF_Connection connection, ReadTrace* trace)
        : connection_(std::move(connection)), before_(connection_.inner().trace())
    {
        connection_.inner().setTrace(trace);
    }

    ~TracedConnection() { connection_.inner().setTrace(before_); }

private:
    DBIF_Connection connection_;
    ReadTrace* before_;
};
} // namespace dbif
