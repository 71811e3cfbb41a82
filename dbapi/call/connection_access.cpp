#include "dbapi/call/connection_access.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbui/connection_open.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_path.h"

#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>

namespace {
/// A text that changes with every change of the connections file; empty when there is none. The
/// file is replaced as a whole, so a new one has another inode.
std::string connections_file_stamp()
{
    const std::string path = dbui_connections_file();

    struct stat status
    {};

    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return path + ":" + std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino) + ":" +
           std::to_string(status.st_size) + ":" + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec) + ":" + std::to_string(status.st_ctim.tv_sec) +
           "." + std::to_string(status.st_ctim.tv_nsec);
}

bool fail(std::string* error, const std::string& message)
{
    dbif::deliver_error(error, message);
    return false;
}

bool find_record(const std::string& name, DbuiConnection* record)
{
    if (dbui_find_connection_by_name(name, record)) {
        return true;
    }
    if (!dbapi::is_database_path(name)) {
        return false;
    }
    *record = DbuiConnection(name, "QSQLITE", "", "", name, "", "");
    return true;
}
} // namespace

bool dbapi_get_connection_info(const std::string& name, DbuiConnection* record)
{
    DbapiCache& cache = dbapi::make_cache();
    const std::string stamp = connections_file_stamp();
    if (stamp.empty() || stamp != cache.fileStamp || name.empty() ||
        cache.storedRecord.get_connectionName() != name) {
        cache.fileStamp = stamp;
        if (!find_record(name, &cache.storedRecord)) {
            record->clear();
            return false;
        }
    }
    *record = cache.storedRecord;
    return true;
}

bool dbapi_get_connection_object_by_name(
    const std::string& name,
    DBIF_Connection** connection,
    std::string* error)
{
    dbif::clear_error(error);
    *connection = nullptr;
    DbapiCache* cache = dbapi::cache();
    if (cache != nullptr && cache->failedOpening.has_value() &&
        cache->failedOpening->first == name) {
        return fail(error, cache->failedOpening->second);
    }
    if (cache != nullptr && !cache->in_update() && cache->connection != nullptr &&
        cache->get_connection_name() == name) {
        *connection = cache->connection.get();
        return true;
    }
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        return fail(error, "Error: Database connection name \"" + name + "\" was not found.\n");
    }
    return dbapi::open_connection_of(record, connection, error);
}

namespace dbapi {
bool is_database_path(const std::string& name)
{
    if (name.find('/') != std::string::npos) {
        return true;
    }
    const std::string upper = normalised(name);
    std::error_code ignored;
    return (upper.ends_with(".DB") || upper.ends_with(".SQLITE") || upper.ends_with(".SQLITE3")) &&
           std::filesystem::exists(name, ignored);
}

bool is_unnamed_file(const DbuiConnection& record)
{
    // Whoever stores a connection under the very path of its file reads it just as well like this.
    return record.get_connectionName() == record.get_databaseName() &&
           is_database_path(record.get_connectionName());
}

std::string not_opened(const std::string& name, const std::string& detail)
{
    return "Error: Database connection name \"" + name +
           "\" failed to create a valid open database connection.\n" +
           (detail.empty()
                ? std::string("Failed to create a valid open database connection.\n")
                : "The database connection reported the following error(s): \n" + detail);
}

bool open_connection_of(
    const DbuiConnection& record,
    DBIF_Connection** connection,
    std::string* error)
{
    *connection = nullptr;
    const std::string name = record.get_connectionName();
    try {
        auto handle = std::make_unique<DBIF_Connection>(dbui::blank_connection());
        std::string reason;
        const auto missingFile =
            is_unnamed_file(record) ? dbif::MissingFile::ReadOnly : dbif::MissingFile::Fail;
        if (!dbui::open_connection(record, missingFile, handle.get(), &reason)) {
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
