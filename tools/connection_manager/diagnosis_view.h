#pragma once

#include "dbui/diagnosis/diagnosis_step.h"

#include <QTextBrowser>

#include <vector>

namespace connection_manager {
/// Shows the steps of a diagnosis: for each layer whether it is all right, what was found and what
/// to do. The text can be selected and copied.
class DiagnosisView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit DiagnosisView(QWidget* parent = nullptr);

    void begin(const QString& connectionName);
    void add(const dbui::DiagnosisStep& step);
    /// Shows the conclusion.
    void finish(bool isStopped);

private:
    [[nodiscard]] static QString nameOf(dbui::DiagnosisStep::Layer layer);
    [[nodiscard]] static QString nameOf(dbui::DiagnosisStep::Outcome outcome);
    [[nodiscard]] QString conclusion() const;
    void render(const QString& heading);

    QString connectionName_;
    std::vector<dbui::DiagnosisStep> steps_;
};
} // namespace connection_manager
