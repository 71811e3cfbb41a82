#include "dbif/host/error_text.h"

#include <iostream>

KTString convert_sql_error_to_string(const QSqlError& error)
{
    const QString database = error.databaseText().trimmed();
    const QString text = database.isEmpty() ? error.driverText().trimmed() : database;
    return text.isEmpty() ? KTString() : KTString(dbif::to_utf8(text) + "\n");
}

KTString convert_DBIF_Exception_to_string(DBIF_Exception* exception)
{
    KTString text = convert_sql_error_to_string(exception->error());
    if (!exception->sql().isEmpty()) {
        text += "The failed statement was: " + dbif::to_utf8(exception->sql()) + "\n";
    }
    return text;
}

void report_DBIF_Exception(DBIF_Exception* exception)
{
    std::cerr << convert_DBIF_Exception_to_string(exception).str();
}

void dbapi_build_error_string_from_dbif_exception(
    const DBIF_Exception& exception,
    std::string* text)
{
    *text = "Error: Database Exception reported: \n" +
            convert_sql_error_to_string(exception.error()).str();
}

void dbapi_build_error_string_from_qsqlerror(const QSqlError& error, std::string* text)
{
    *text = convert_sql_error_to_string(error).str();
}

namespace dbif {
void deliver_error(std::string* errors, const std::string& message)
{
    if (errors != nullptr) {
        *errors = message;
    } else {
        std::cerr << message;
    }
}

void clear_error(std::string* errors)
{
    if (errors != nullptr) {
        errors->clear();
    }
}
} // namespace dbif
