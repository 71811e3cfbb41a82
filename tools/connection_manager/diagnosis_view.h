#pragma once

#include "dbui/connection_record.h"
#include "dbui/diagnosis/diagnosis_step.h"

#include <QSharedPointer>
#include <QTextBrowser>

#include <vector>

namespace connection_manager {
class DiagnosisRun;

/// Runs a diagnosis and shows its steps: for each layer whether it is all right, what was found and
/// what to do. The text can be selected and copied.
class DiagnosisView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit DiagnosisView(QWidget* parent = nullptr);
    ~DiagnosisView() override;
    DiagnosisView(const DiagnosisView&) = delete;
    DiagnosisView& operator=(const DiagnosisView&) = delete;
    DiagnosisView(DiagnosisView&&) = delete;
    DiagnosisView& operator=(DiagnosisView&&) = delete;

    /// Begins, in the place of a test that goes on.
    void test(const DbuiConnection& record);
    /// Ends the test at once for the user. The layer that it is at goes on behind the scenes, and
    /// its outcome is not shown.
    void stop();

    [[nodiscard]] bool isTesting() const { return !running_.isNull(); }

signals:
    void testingChanged();

private:
    void giveUp();
    void add(const dbui::DiagnosisStep& step);
    void finish();
    [[nodiscard]] static QString nameOf(dbui::DiagnosisStep::Layer layer);
    [[nodiscard]] static QString nameOf(dbui::DiagnosisStep::Outcome outcome);
    [[nodiscard]] QString conclusion() const;
    void render(const QString& heading);

    QSharedPointer<DiagnosisRun> running_; // while a test goes on
    QString connectionName_;
    std::vector<dbui::DiagnosisStep> steps_;
};
} // namespace connection_manager
