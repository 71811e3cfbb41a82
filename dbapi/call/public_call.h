#pragma once

#include "dbapi/call/cache_refresh.h"
#include "dbapi/call/call_cache.h"
#include "dbapi/call/selection.h"
#include "dbapi/words/database_fault.h"

#include <string>

namespace dbapi {
/// The beginning of every public data call: the outermost one brings the cache up to date for its
/// connection and query string; one that the library makes itself inside another leaves it alone.
/// As long as the object lives, the call counts as in progress.
class PublicCall
{
public:
    /// `errors` receives the text when the call cannot begin.
    PublicCall(const std::string& connectionName, const std::string& query, std::string* errors)
        : hasBegun_(
              !helper_.is_at_toplevel() ||
              dbapi_initialize_global_cache(connectionName, query, errors))
    {
        if (!hasBegun_) {
            make_cache().lastFault = connection_fault(make_cache().lastErrors);
        }
    }

    [[nodiscard]] bool hasBegun() const { return hasBegun_; }

private:
    DbapiCacheHelper helper_;
    bool hasBegun_;
};

/// The connection that the library keeps open for the calls that follow, brought up to date. Throws
/// `FaultError`.
DBIF_Connection kept_connection(const std::string& name);

/// Ends a public call with a fault: its text goes to `errors`, or to the standard error stream when
/// that is null, and the fault is kept for `db_get_last_fault`. Always false.
bool fail_call(const Fault& fault, std::string* errors);

/// A public call from its begin to its end: `run` does what it is for, and throws `FaultError` when
/// that fails. Other exceptions pass.
template <typename Run>
bool run_call(
    const std::string& connectionName,
    const std::string& query,
    std::string* errors,
    const Run& run)
{
    const PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    try {
        run();
        return true;
    } catch (const FaultError& error) {
        return fail_call(error.fault(), errors);
    }
}

/// The same for calls that hand database errors out as texts, which become faults.
template <typename Run>
bool run_call_without_exceptions(
    const std::string& connectionName,
    const std::string& query,
    std::string* errors,
    const Run& run)
{
    return run_call(connectionName, query, errors, [&run] {
        try {
            run();
        } catch (const DBIF_Exception& exception) {
            throw FaultError(database_fault(exception));
        }
    });
}
} // namespace dbapi
