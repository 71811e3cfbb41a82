#include "dbapi/db_fault.h"

#include "dbapi/call/call_cache.h"

namespace dbapi {
bool db_get_last_fault(Fault* fault)
{
    const DbapiCache* cached = cache();
    if (cached == nullptr || !cached->lastFault.has_value()) {
        return false;
    }
    *fault = *cached->lastFault;
    return true;
}
} // namespace dbapi
