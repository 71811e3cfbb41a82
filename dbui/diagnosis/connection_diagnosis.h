#pragma once

#include "dbui/connection_record.h"
#include "dbui/diagnosis/diagnosis_step.h"

#include <vector>

namespace dbui {
/// Follows a connection layer by layer, from the record to the right to write, and tells for each
/// what was found. Changes nothing: makes no file, database or table, and takes back what it writes
/// to prove that it may. Each layer gives up on its own within 10 s (name look-up, connecting) or
/// 5 s (locks). Shows no boxes, and may run in any thread while no other uses the library.
std::vector<DiagnosisStep>
diagnose_connection(const DbuiConnection& record, const DiagnosisListener& listener = {});
} // namespace dbui
