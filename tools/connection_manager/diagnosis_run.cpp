#include "tools/connection_manager/diagnosis_run.h"

#include "dbui/diagnosis/connection_diagnosis.h"

#include "tools/connection_manager/library_thread.h"

namespace connection_manager {
QSharedPointer<DiagnosisRun> DiagnosisRun::make()
{
    qRegisterMetaType<dbui::DiagnosisStep>();
    return {new DiagnosisRun, &QObject::deleteLater};
}

void DiagnosisRun::start(const QSharedPointer<DiagnosisRun>& run, const DbuiConnection& record)
{
    run_in_library_thread([run, record] {
        if (!run->isStopped()) {
            dbui::diagnose_connection(record, [&run](const dbui::DiagnosisStep& step) {
                emit run->stepDone(step);
                return !run->isStopped();
            });
        }
        emit run->finished();
    });
}
} // namespace connection_manager
