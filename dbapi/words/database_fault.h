#pragma once

#include "dbapi/words/fault.h"
#include "dbif/host/exception.h"

namespace dbapi {
/// The fault of a statement that the database refused, or of a connection that was lost.
Fault database_fault(const DBIF_Exception& exception);
} // namespace dbapi
