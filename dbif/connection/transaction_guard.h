#pragma once

#include "dbif/connection/connection.h"

#include <QtGlobal>

/// Ends a transaction at the end of a scope: `arm` it right after `beginTransaction()`. Holds its
/// own copy of the connection handle.
class DConHelper
{
    Q_DISABLE_COPY_MOVE(DConHelper)

public:
    explicit DConHelper(DBIF_Connection connection);
    ~DConHelper();

    void arm() { armed_ = true; }

private:
    DBIF_Connection connection_;
    bool armed_ = false;
};

namespace dbif {
/// Makes the statements of a scope see one state of the database: begins a transaction, unless one
/// is open, and ends it with the scope. Throws `DBIF_Exception` when none can be begun.
class ReadTransaction
{
    Q_DISABLE_COPY_MOVE(ReadTransaction)

public:
    explicit ReadTransaction(DBIF_Connection connection);
    ~ReadTransaction() = default;

private:
    DConHelper end_;
};
} // namespace dbif
