#pragma once

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"

#include <QSqlError>

#include <string>

/// Readable text of a database error, ending in a newline; empty when there is no error.
KTString convert_sql_error_to_string(const QSqlError& error);
/// Readable text of an exception: the database error, and the statement where there is one.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
KTString convert_DBIF_Exception_to_string(DBIF_Exception* exception);
/// Writes the exception's text to the standard error stream.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
void report_DBIF_Exception(DBIF_Exception* exception);

/// Assigns the heading and the text of the exception's database error to `text`.
void dbapi_build_error_string_from_dbif_exception(
    const DBIF_Exception& exception,
    std::string* text);
/// Assigns the text of the error to `text`.
void dbapi_build_error_string_from_qsqlerror(const QSqlError& error, std::string* text);

namespace dbif {
/// Hands an error to the caller: assigned to `errors`, or written to the standard error stream when
/// the caller gave none.
void deliver_error(std::string* errors, const std::string& message);
/// Empties `errors` when it is given.
void clear_error(std::string* errors);
} // namespace dbif
