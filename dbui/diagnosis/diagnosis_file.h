#pragma once

#include "dbui/connection_record.h"
#include "dbui/diagnosis/diagnosis_step.h"

#include <vector>

namespace dbui {
/// The diagnosis of a connection to an SQLite file; see `diagnose_connection`.
std::vector<DiagnosisStep>
diagnose_file(const DbuiConnection& record, const DiagnosisListener& listener);
} // namespace dbui
