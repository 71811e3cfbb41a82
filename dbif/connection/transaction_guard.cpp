#include "dbif/connection/transaction_guard.h"

#include <utility>

DConHelper::DConHelper(DBIF_Connection connection) : connection_(std::move(connection)) {}

DConHelper::~DConHelper()
{
    if (armed_) {
        connection_.endTransaction();
    }
}
