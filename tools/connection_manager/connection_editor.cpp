#include "tools/connection_manager/connection_editor.h"

#include "dbui/connection_check.h"
#include "dbui/connection_registry.h"

#include "tools/connection_manager/connection_form.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QMessageBox>
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
    return opens || (!error.empty() &&
                     QMessageBox::question(
                         this, tr("Store connection"),
                         tr("The connection does not open at the moment. Store "
                            "it all the same?"),
                         QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes);
}

void ConnectionEditor::accept()
{
    if (!form_->isComplete() || !isWorthStoring()) {
        return;
    }
    std::string shown; // in a box, by the call itself
    const bool isStored = old_ ? dbui_update_connection(*old_, form_->record(), true, &shown)
                               : dbui_add_connection(form_->record(), true, &shown);
    if (isStored) {
        QDialog::accept();
    }
}
} // namespace connection_manager
