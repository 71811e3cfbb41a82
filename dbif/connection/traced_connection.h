#pragma once

#include "dbif/connection/connection.h"
#include "dbif/engine/read_trace.h"

namespace dbif {
/// Attaches a trace to a connection for the length of a scope. One that was attached before is
/// attached again at its end.
class TracedConnection
{
    Q_DISABLE_COPY_MOVE(TracedConnection)

public:
    TracedConnection(DBIF_Connection connection, ReadTrace* trace)
        : connection_(std::move(connection)), before_(connection_.trace())
    {
        connection_.setTrace(trace);
    }

    ~TracedConnection() { connection_.setTrace(before_); }

private:
    DBIF_Connection connection_;
    ReadTrace* before_;
};
} // namespace dbif
