#include "dbui/diagnosis/diagnosis_step.h"

#include <array>

namespace dbui {
const char* name_of(DiagnosisStep::Layer layer)
{
    static constexpr std::array kNames{"record",     "host name", "port",   "login",    "server",
                                       "encryption", "folder",    "file",   "database", "journal",
                                       "schema",     "reading",   "writing"};
    return kNames.at(static_cast<std::size_t>(layer));
}

const char* name_of(DiagnosisStep::Outcome outcome)
{
    static constexpr std::array kNames{"ok", "warning", "failed", "skipped"};
    return kNames.at(static_cast<std::size_t>(outcome));
}
} // namespace dbui
