#include "tools/connection_manager/diagnosis_view.h"

#include "dbif/host/host_string.h"

#include "tools/connection_manager/diagnosis_run.h"

#include <algorithm>

namespace connection_manager {
namespace {
using Layer = dbui::DiagnosisStep::Layer;
using Outcome = dbui::DiagnosisStep::Outcome;

/// Told apart by the sign as well as by the colour.
QString sign_of(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Ok:
        return QStringLiteral("<span style='color:#1a7f37'>&#10004;</span>");
    case Outcome::Warning:
        return QStringLiteral("<span style='color:#9a6700'>&#9888;</span>");
    case Outcome::Failed:
        return QStringLiteral("<span style='color:#cf222e'>&#10008;</span>");
    case Outcome::Skipped:
        break;
    }
    return QStringLiteral("&ndash;");
}

QString html(const std::string& text)
{
    return dbif::to_qt(text).toHtmlEscaped();
}
} // namespace

DiagnosisView::DiagnosisView(QWidget* parent) : QTextBrowser(parent)
{
    setObjectName(QStringLiteral("diagnosis"));
    setAccessibleName(tr("Result of the test"));
    setTabChangesFocus(true);
}

DiagnosisView::~DiagnosisView()
{
    giveUp();
}

void DiagnosisView::test(const DbuiConnection& record)
{
    giveUp();
    connectionName_ = dbif::to_qt(record.get_connectionName());
    steps_.clear();
    render(tr("Testing \"%1\" ...").arg(connectionName_));
    running_ = DiagnosisRun::make();
    connect(running_.data(), &DiagnosisRun::stepDone, this, &DiagnosisView::add);
    connect(running_.data(), &DiagnosisRun::finished, this, &DiagnosisView::finish);
    DiagnosisRun::start(running_, record);
    emit testingChanged();
}

void DiagnosisView::stop()
{
    giveUp();
    render(tr("The test of \"%1\" was stopped").arg(connectionName_));
    emit testingChanged();
}

void DiagnosisView::giveUp()
{
    if (running_) {
        disconnect(running_.data(), nullptr, this, nullptr);
        running_->stop();
        running_.reset();
    }
}

void DiagnosisView::add(const dbui::DiagnosisStep& step)
{
    if (sender() == running_.data()) { // and not one that was given up, but already on its way
        steps_.push_back(step);
        render(tr("Testing \"%1\" ...").arg(connectionName_));
    }
}

void DiagnosisView::finish()
{
    if (sender() == running_.data()) {
        running_.reset();
        render(conclusion());
        emit testingChanged();
    }
}

QString DiagnosisView::conclusion() const
{
    const auto has = [this](Outcome outcome) {
        return std::any_of(steps_.begin(), steps_.end(), [outcome](const auto& step) {
            return step.outcome == outcome;
        });
    };
    if (has(Outcome::Failed)) {
        return tr("\"%1\" does not work").arg(connectionName_);
    }
    return has(Outcome::Warning) ? tr("\"%1\" works, within limits").arg(connectionName_)
                                 : tr("\"%1\" works").arg(connectionName_);
}

void DiagnosisView::render(const QString& heading)
{
    QString text = QStringLiteral("<p><b>%1</b></p><table cellspacing='0' cellpadding='3'>")
                       .arg(heading.toHtmlEscaped());
    bool hasFailed = false;
    for (const dbui::DiagnosisStep& step : steps_) {
        // The steps after a failure need no words.
        const bool isEmpty = hasFailed && step.outcome == Outcome::Skipped;
        QString found = isEmpty ? QString() : html(step.detail);
        hasFailed = hasFailed || step.outcome == Outcome::Failed;
        if (!step.advice.empty()) {
            found += QStringLiteral("<br><b>%1</b>").arg(html(step.advice));
        }
        const QString name = nameOf(step.layer);
        const QString outcome = nameOf(step.outcome);
        text += QStringLiteral("<tr><td>%1</td><td>%2&nbsp;&nbsp;</td><td>%3&nbsp;&nbsp;</td>"
                               "<td>%4</td></tr>")
                    .arg(sign_of(step.outcome), name, outcome, found);
    }
    setHtml(text + QStringLiteral("</table>"));
}

QString DiagnosisView::nameOf(Layer layer)
{
    switch (layer) {
    case Layer::Record:
        return tr("Record");
    case Layer::HostName:
        return tr("Host name");
    case Layer::Port:
        return tr("Port");
    case Layer::Login:
        return tr("Login");
    case Layer::Server:
        return tr("Server");
    case Layer::Encryption:
        return tr("Encryption");
    case Layer::Folder:
        return tr("Folder");
    case Layer::File:
        return tr("File");
    case Layer::Database:
        return tr("Database");
    case Layer::JournalMode:
        return tr("Journal");
    case Layer::Schema:
        return tr("Schema");
    case Layer::Reading:
        return tr("Reading");
    case Layer::Writing:
        break;
    }
    return tr("Writing");
}

QString DiagnosisView::nameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Ok:
        return tr("ok");
    case Outcome::Warning:
        return tr("warning");
    case Outcome::Failed:
        return tr("failed");
    case Outcome::Skipped:
        break;
    }
    return tr("skipped");
}
} // namespace connection_manager
