#pragma once

#include "dbui/connection_record.h"
#include "dbui/diagnosis/diagnosis_step.h"

#include <vector>

namespace dbui {
/// The diagnosis of a connection to a database of a server; see `diagnose_connection`.
std::vector<DiagnosisStep>
diagnose_server(const DbuiConnection& record, const DiagnosisListener& listener);
} // namespace dbui
