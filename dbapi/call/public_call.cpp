#include "dbapi/call/public_call.h"

#include "dbif/host/error_text.h"

namespace dbapi {
DBIF_Connection kept_connection(const std::string& name)
{
    std::string errors;
    const PublicCall call(name, "", &errors);
    if (!call.hasBegun()) {
        throw FaultError(connection_fault(errors));
    }
    return connection_for_call(name);
}

bool fail_call(const Fault& fault, std::string* errors)
{
    make_cache().lastFault = fault;
    dbif::deliver_error(errors, fault.text);
    return false;
}
} // namespace dbapi
