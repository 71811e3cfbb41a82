#pragma once

#include "dbapi/words/fault.h"
#include "dbif/host/exception.h"

namespace dbapi {
/// The fault of a statement that the database refused.
Fault database_fault(const DBIF_Exception& exception);
} // namespace dbapi
