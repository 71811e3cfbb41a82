#pragma once

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"

#include <QSqlError>

#include <string>

/// The database's text of the error, or else the driver's, ending in a newline; empty when there is
/// neither. UTF-8.
KTString convert_sql_error_to_string(const QSqlError& error);
/// The text of the exception's database error and, on a line of its own, the failed statement where
/// there is one. `exception` is not null.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
KTString convert_DBIF_Exception_to_string(DBIF_Exception* exception);
/// Writes the same text to the standard error stream.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
void report_DBIF_Exception(DBIF_Exception* exception);

/// Assigns "Error: Database Exception reported: ", a newline, and the text of the exception's
/// database error to `text`.
void dbapi_build_error_string_from_dbif_exception(
    const DBIF_Exception& exception,
    std::string* text);
/// Assigns the text of the error to `text`; an empty one when there is no error.
void dbapi_build_error_string_from_qsqlerror(const QSqlError& error, std::string* text);

namespace dbif {
/// Assigns `message` to `errors`, or writes it to the standard error stream when `errors` is null.
void deliver_error(std::string* errors, const std::string& message);
/// Empties `errors`, unless it is null.
void clear_error(std::string* errors);
} // namespace dbif
