#include "dbapi/call/public_call.h"

#include "dbif/host/error_text.h"

namespace dbapi {
bool fail_call(const Fault& fault, std::string* errors)
{
    make_cache().lastFault = fault;
    dbif::deliver_error(errors, fault.text);
    return false;
}
} // namespace dbapi
