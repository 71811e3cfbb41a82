#include "tools/connection_manager/diagnosis_run.h"

#include "dbui/diagnosis/connection_diagnosis.h"

#include <QThreadPool>

namespace connection_manager {
QSharedPointer<DiagnosisRun> DiagnosisRun::make()
{
    qRegisterMetaType<dbui::DiagnosisStep>();
    return {new DiagnosisRun, &QObject::deleteLater};
}

void DiagnosisRun::start(const QSharedPointer<DiagnosisRun>& run, const DbuiConnection& record)
{
    // The application waits for this pool when it ends.
    QThreadPool::globalInstance()->start([run, record] {
        dbui::diagnose_connection(record, [&run](const dbui::DiagnosisStep& step) {
            emit run->stepDone(step);
            return !run->isStopped();
        });
        emit run->finished();
    });
}
} // namespace connection_manager
