#pragma once

#include "dbapi/call/cache_refresh.h"
#include "dbapi/call/call_cache.h"

#include <string>

namespace dbapi {
/// What every public data call begins with: the outermost one brings the cache up to date for its
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
    {}

    [[nodiscard]] bool hasBegun() const { return hasBegun_; }

private:
    DbapiCacheHelper helper_;
    bool hasBegun_;
};
} // namespace dbapi
