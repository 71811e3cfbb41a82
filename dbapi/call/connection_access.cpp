#include "dbapi/call/connection_access.h"

#include "dbapi/call/call_cache.h"
#include "dbif/host/error_text.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"

#include <memory>

namespace {
bool fail(std::string* error, const std::string& message)
{
    dbif::deliver_error(error, message);
    return false;
}

std::string not_opened(const std::string& name, const std::string& detail)
{
    return "Error: Database connection name \"" + name +
           "\" failed to create a valid open database connection.\n" +
           (detail.empty()
                ? std::string("Failed to create a valid open database connection.\n")
                : "The database connection reported the following error(s): \n" + detail);
}
} // namespace

bool dbapi_get_connection_info(const std::string& name, DbuiConnection* record)
{
    return dbui_find_connection_by_name(name, record);
}

bool dbapi_get_connection_object_by_name(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error)
{
    dbif::clear_error(error);
    *connection = nullptr;
    if (!dbapi_cache_updating_self() && dbapi_cache_is_valid() &&
        dbapi_get_cached_connection_name() == name) {
        *connection = dbapi_get_cached_connection();
        return true;
    }
    return dbapi::open_stored_connection(name, connection, error);
}

namespace dbapi {
bool open_stored_connection(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error)
{
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        return fail(error, "Error: Database connection name \"" + name + "\" was not found.\n");
    }
    try {
        auto handle = std::make_unique<DBIF_Connection>(dbui::blank_connection());
        std::string reason;
        if (!dbui_make_dbif_connection_object_by_name(name, handle.get(), &reason)) {
            return fail(error, not_opened(name, reason));
        }
        if (!handle->isValid()) {
            dbapi_build_error_string_from_qsqlerror(handle->lastError(), &reason);
            return fail(error, not_opened(name, reason));
        }
        *connection = handle.release();
        return true;
    } catch (const DBIF_Exception& exception) {
        std::string reason;
        dbapi_build_error_string_from_dbif_exception(exception, &reason);
        return fail(
            error, "Error: An exception occurred creating a Database connection for the Database "
                   "connection name \"" +
                       name + "\"" + reason);
    }
}
} // namespace dbapi
