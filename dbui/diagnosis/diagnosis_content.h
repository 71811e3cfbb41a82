#pragma once

#include "dbif/connection/connection.h"
#include "dbui/diagnosis/diagnosis_report.h"

#include <functional>
#include <string>

namespace dbui {
/// What to do when a right is missing. The first is for whoever reads, the second for whoever
/// imports.
struct RightsAdvice
{
    std::string toRead;
    std::string toWrite;
};

/// What an empty database answers to a statement that shows the right to make tables there, and
/// that leaves nothing behind; an error that is not valid when there is the right.
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
