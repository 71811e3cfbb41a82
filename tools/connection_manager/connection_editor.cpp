#include "tools/connection_manager/connection_editor.h"

#include "dbif/host_string.h"
#include "dbui/connection_check.h"
#include "dbui/connections_path.h"

#include "tools/connection_manager/connection_form.h"
#include "tools/connection_manager/plain_boxes.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace connection_manager {
ConnectionEditor::ConnectionEditor(
    const QString& title,
    std::set<std::string> takenNames,
    std::optional<DbuiConnection> old,
    QWidget* parent)
    : QDialog(parent), old_(std::move(old)), form_(new ConnectionForm(std::move(takenNames)))
{
    constexpr int kWidth = 520;
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(form_);
    layout->addStretch();
    layout->addWidget(buttons);
    resize(kWidth, sizeHint().height());
    form_->setFocus();

    QPushButton* store = buttons->button(QDialogButtonBox::Ok);
    store->setText(tr("&Store"));
    store->setObjectName(QStringLiteral("store"));
    store->setDefault(true); // also while it is disabled, when Qt would choose Cancel
    store->setEnabled(false);
    connect(form_, &ConnectionForm::changed, store, [this, store] {
        store->setEnabled(form_->isComplete());
    });
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

bool ConnectionEditor::isWorthStoring()
{
    std::string error;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool opens = dbui_validate_connection_opens(form_->record(), true, &error);
    QGuiApplication::restoreOverrideCursor();
    // Without a text it was the user who did not want the database.
    return opens || (!error.empty() && confirm(
                                           this, tr("Store connection"),
                                           tr("The connection does not open at the moment. Store "
                                              "it all the same?")));
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
    if (!form_->isComplete() || !isPossible(dbui::foresee_storing({form_->record(), old_}), {}) ||
        !isWorthStoring()) {
        return;
    }
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
