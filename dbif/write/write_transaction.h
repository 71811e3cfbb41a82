#pragma once

#include "dbif/connection/connection.h"
#include "dbif/engine/sql_dialect.h"

#include <functional>
#include <string>

namespace dbif {
/// A transaction that writes to a measurement database, from its begin to `commit`; without it,
/// everything is taken back. It holds off other writers (on a cluster, one of two fails). Begins on
/// a connection that was lost before by reaching the server anew.
class WriteTransaction
{
    Q_DISABLE_COPY_MOVE(WriteTransaction)

public:
    explicit WriteTransaction(DBIF_Connection connection);
    ~WriteTransaction();

    /// A time later than all that are stored, whatever the clock says, so that readers notice.
    [[nodiscard]] const std::string& stamp() const { return stamp_; }

    /// Commits the transaction. When a server fails meanwhile, a record that the transaction wrote
    /// with the stamp, of `stampedTable` (empty: none), tells whether all was stored or nothing;
    /// throws `DBIF_Exception` when nothing was, or when the server cannot be asked.
    void commit(const std::string& stampedTable, int stampedId);

private:
    void setAsBefore(const SqlText& setting);
    bool isStoredAfter(const DBIF_Exception& failure, const std::string& table, int id);

    DBIF_Connection connection_;
    std::string stamp_;
    bool isOpen_ = false;
};

/// The number of writing transactions that the database has seen; within one, that counts too.
long long writes_so_far(DBIF_Connection& connection);
} // namespace dbif
