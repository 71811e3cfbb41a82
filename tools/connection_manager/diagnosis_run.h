#pragma once

#include "dbui/connection_record.h"
#include "dbui/diagnosis/diagnosis_step.h"

#include <QObject>
#include <QSharedPointer>

#include <atomic>

namespace connection_manager {
/// A diagnosis that goes on in the thread of the library, so that windows stay alive meanwhile.
class DiagnosisRun : public QObject
{
    Q_OBJECT

public:
    /// A run that waits for `start`, so that nobody misses a step.
    static QSharedPointer<DiagnosisRun> make();

    /// Begins. The run lives until it is finished, whether or not anybody keeps it.
    static void start(const QSharedPointer<DiagnosisRun>& run, const DbuiConnection& record);

    /// Ends it after the layer that it is at.
    void stop() { isStopped_ = true; }

    [[nodiscard]] bool isStopped() const { return isStopped_; }

signals:
    // Arrive in the thread of the receiver.
    void stepDone(const dbui::DiagnosisStep& step);
    void finished();

private:
    DiagnosisRun() = default;

    std::atomic<bool> isStopped_ = false;
};
} // namespace connection_manager
