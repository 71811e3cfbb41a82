#include "dbif/connection/transaction_guard.h"

#include <utility>

DConHelper::DConHelper(DBIF_Connection connection) : connection_(std::move(connection)) {}

DConHelper::~DConHelper()
{
    if (armed_) {
        connection_.endTransaction();
    }
}

namespace dbif {
ReadTransaction::ReadTransaction(DBIF_Connection connection) : end_(connection)
{
    if (!connection.isInTransaction()) {
        connection.beginTransaction();
        end_.arm();
    }
}
} // namespace dbif
