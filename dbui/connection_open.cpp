#include "dbui/connection_open.h"

#include "dbif/host/error_text.h"
#include "dbui/connection_registry.h"

bool dbui_make_dbif_connection_object(
    const DbuiConnection& record,
    DBIF_Connection* connection,
    std::string* error)
{
    return dbui::open_connection(record, dbif::MissingFile::Create, connection, error);
}

bool dbui_make_dbif_connection_object_by_name(
    const std::string& name,
    DBIF_Connection* connection,
    std::string* error)
{
    DbuiConnection record;
    if (!dbui_find_connection_by_name(name, &record)) {
        dbif::deliver_error(
            error, "The database connection name \"" + name + "\" was not found.\n");
        return false;
    }
    return dbui::open_connection(record, dbif::MissingFile::Fail, connection, error);
}

namespace dbui {
DBIF_Connection blank_connection()
{
    return {"", "", "", "", "", dbui::kStandardPort};
}

bool open_connection(
    const DbuiConnection& record,
    dbif::MissingFile missingFile,
    DBIF_Connection* connection,
    std::string* error)
{
    dbif::clear_error(error);
    *connection = blank_connection();
    const int port = record.port_is_a_number() ? record.get_port() : dbui::kStandardPort;
    try {
        DBIF_Connection opened(
            record.get_dbDriverName().c_str(), record.get_hostname().c_str(),
            record.get_databaseName().c_str(), record.get_databaseUsername().c_str(),
            record.get_databasePassword().c_str(), port, missingFile);
        if (opened.isValid()) {
            opened.initializeSchemaIfMissing();
        }
        *connection = opened;
        return true;
    } catch (DBIF_Exception& exception) {
        if (error != nullptr) {
            *error = convert_DBIF_Exception_to_string(&exception).str();
        } else {
            report_DBIF_Exception(&exception);
        }
        return false;
    }
}
} // namespace dbui
