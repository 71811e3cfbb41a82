#pragma once

#include "dbif/connection/connection.h"
#include "dbui/diagnosis/diagnosis_report.h"

#include <functional>
#include <string>

namespace dbui {
/// The advice for a missing right. The first text is for users who read, the second for users who
/// import.
struct RightsAdvice
{
    std::string toRead;
    std::string toWrite;
};

/// Runs a statement that needs the right to create tables and that leaves nothing behind, and
/// returns its error; an error that is not valid when there is the right.
using CreationCheck = std::function<QSqlError()>;

/// The layers that both kinds of database have: the schema and its version, the rights to read and
/// to write. The connection is open.
void diagnose_content(
    DBIF_Connection& connection,
    const RightsAdvice& advice,
    const CreationCheck& mayCreate,
    DiagnosisReport* report);

/// The text of a database error on one line.
std::string line_of(const QSqlError& error);
} // namespace dbui
