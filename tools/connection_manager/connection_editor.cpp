#include "tools/connection_manager/connection_editor.h"

#include "dbif/host/host_string.h"
#include "dbui/connections_path.h"

#include "tools/connection_manager/connection_form.h"
#include "tools/connection_manager/diagnosis_view.h"
#include "tools/connection_manager/plain_boxes.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace connection_manager {
namespace {
constexpr int kDiagnosisHeight = 220;
}

ConnectionEditor::ConnectionEditor(
    const QString& title,
    std::set<std::string> takenNames,
    std::optional<DbuiConnection> old,
    QWidget* parent)
    : QDialog(parent),
      old_(std::move(old)),
      form_(new ConnectionForm(std::move(takenNames))),
      progress_(new QLabel(tr("Opening the connection ..."))),
      diagnosis_(new DiagnosisView)
{
    constexpr int kWidth = 520;
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    progress_->setObjectName(QStringLiteral("opening"));
    progress_->hide();
    diagnosis_->hide();
    layout->addWidget(form_);
    layout->addWidget(diagnosis_, 1);
    layout->addStretch();
    layout->addWidget(progress_);
    layout->addWidget(buttons);
    resize(kWidth, sizeHint().height());
    form_->setFocus();

    test_ = buttons->addButton(tr("&Test"), QDialogButtonBox::ActionRole);
    test_->setObjectName(QStringLiteral("testTyped"));
    test_->setAutoDefault(false);
    cancel_ = buttons->button(QDialogButtonBox::Cancel);
    store_ = buttons->button(QDialogButtonBox::Ok);
    store_->setText(tr("&Store"));
    store_->setObjectName(QStringLiteral("store"));
    store_->setDefault(true); // also while it is disabled, when Qt would choose Cancel
    showState();
    connect(form_, &ConnectionForm::changed, this, &ConnectionEditor::showState);
    connect(diagnosis_, &DiagnosisView::testingChanged, this, &ConnectionEditor::showState);
    connect(test_, &QPushButton::clicked, this, &ConnectionEditor::test);
    connect(buttons, &QDialogButtonBox::accepted, this, &ConnectionEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ConnectionEditor::reject);
}

void ConnectionEditor::setRecord(const DbuiConnection& record)
{
    form_->setRecord(record);
}

DbuiConnection ConnectionEditor::record() const
{
    return form_->record();
}

void ConnectionEditor::open(OpeningRun::MissingDatabase missing)
{
    opening_ = OpeningRun::make();
    connect(opening_.data(), &OpeningRun::finished, this, &ConnectionEditor::finishOpening);
    OpeningRun::start(opening_, form_->record(), missing);
    showState();
    cancel_->setFocus(); // the form takes no keys now, and Escape gives up
}

void ConnectionEditor::finishOpening(const Opening& opening)
{
    if (sender() != opening_.data()) {
        return; // given up
    }
    endOpening();
    if (opening.opens) {
        store();
    } else if (opening.lacksDatabase) {
        const DbuiConnection record = form_->record();
        if (confirm(
                this, windowTitle(),
                tr("The server %1 has no database \"%2\". Create it?")
                    .arg(
                        dbif::to_qt(record.get_hostname()),
                        dbif::to_qt(record.get_databaseName())))) {
            open(OpeningRun::MissingDatabase::Create);
        }
    } else if (confirm(
                   this, windowTitle(),
                   tr("The connection does not open at the moment. Store it all the same?") +
                       QStringLiteral("\n\n") + dbif::to_qt(opening.error).trimmed())) {
        store();
    }
}

void ConnectionEditor::showState()
{
    const bool isOpening = !opening_.isNull();
    form_->setEnabled(!isOpening);
    store_->setEnabled(!isOpening && form_->isComplete());
    test_->setEnabled(!isOpening && (form_->isComplete() || diagnosis_->isTesting()));
    test_->setText(diagnosis_->isTesting() ? tr("S&top") : tr("&Test"));
    progress_->setVisible(isOpening);
}

void ConnectionEditor::test()
{
    if (diagnosis_->isTesting()) {
        diagnosis_->stop();
        return;
    }
    if (!diagnosis_->isVisible()) {
        diagnosis_->show();
        resize(width(), height() + kDiagnosisHeight);
    }
    diagnosis_->test(form_->record());
}

void ConnectionEditor::reject()
{
    if (opening_.isNull()) {
        QDialog::reject();
        return;
    }
    endOpening(); // whatever comes of it, nobody looks any more
}

void ConnectionEditor::endOpening()
{
    opening_.reset();
    showState();
    form_->setFocus();
}

bool ConnectionEditor::isPossible(dbui::StoreOutcome outcome, const std::string& error)
{
    switch (outcome) {
    case dbui::StoreOutcome::Stored:
        return true;
    case dbui::StoreOutcome::NameTaken:
        form_->addTakenName(form_->record().get_connectionName());
        warn(
            this, windowTitle(),
            tr("Another connection has this name by now. Choose another name."));
        return false;
    case dbui::StoreOutcome::Outdated:
        warn(
            this, windowTitle(),
            tr("The connection was changed or removed by another program while this window was "
               "open. Nothing was stored. Close this window, and edit the connection as it is "
               "now."));
        return false;
    case dbui::StoreOutcome::FileDamaged:
    case dbui::StoreOutcome::Failed:
        break;
    }
    warn(this, windowTitle(), dbif::to_qt(error).trimmed());
    return false;
}

bool ConnectionEditor::mayReplaceDamagedFile()
{
    const QString file = dbif::to_qt(dbui_connections_file());
    return confirm(
        this, windowTitle(),
        tr("The file %1 is damaged: its connections cannot be read. Begin a new list with this "
           "connection? The damaged file is kept as %1.unreadable.")
            .arg(file));
}

void ConnectionEditor::accept()
{
    // Before the connection is opened, which may make a database.
    if (form_->isComplete() && opening_.isNull() &&
        isPossible(dbui::foresee_storing({form_->record(), old_}), {})) {
        open(OpeningRun::MissingDatabase::Report);
    }
}

void ConnectionEditor::store()
{
    dbui::StoreRequest request{form_->record(), old_};
    std::string error;
    dbui::StoreOutcome outcome = dbui::store_connection(request, &error);
    if (outcome == dbui::StoreOutcome::FileDamaged) {
        if (!mayReplaceDamagedFile()) {
            return;
        }
        request.mayReplaceDamagedFile = true;
        outcome = dbui::store_connection(request, &error);
    }
    if (isPossible(outcome, error)) {
        QDialog::accept();
    }
}
} // namespace connection_manager
