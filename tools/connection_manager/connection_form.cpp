#include "tools/connection_manager/connection_form.h"

#include "dbif/host/host_string.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace connection_manager {
namespace {
constexpr int kLargestPort = 65535;

std::string typed(const QLineEdit* edit)
{
    return dbif::trimmed(dbif::to_utf8(edit->text()));
}

QLabel* label_for(const QString& text, QWidget* field)
{
    auto* label = new QLabel(text);
    label->setBuddy(field);
    return label;
}
} // namespace

ConnectionForm::ConnectionForm(std::set<std::string> taken, QWidget* parent)
    : QWidget(parent), taken_(std::move(taken)), layout_(new QFormLayout(this))
{
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    name_ = addField("name", tr("&Name:"), tr("The name by which queries call the database"));
    addKinds();
    file_ = addField("file", tr("&File:"), tr("The path of the SQLite file"));
    addBrowseButton();
    host_ = addField("host", tr("&Host:"), tr("The name or the address of the server"));
    port_ = addField("port", tr("&Port:"), tr("The port of the server; empty stands for 3306"));
    port_.edit->setPlaceholderText(QStringLiteral("3306"));
    database_ = addField("database", tr("Data&base:"), tr("The database on the server"));
    user_ = addField("user", tr("&User:"), tr("The account that opens the database"));
    password_ = addField("password", tr("Pass&word:"), tr("The password of the account"));
    password_.edit->setEchoMode(QLineEdit::Password);
    setFocusProxy(name_.edit);
    showFieldsOfKind();
}

ConnectionForm::Field
ConnectionForm::addField(const char* name, const QString& label, const QString& explanation)
{
    Field field{new QWidget, new QLineEdit, new QLabel};
    auto* row = new QHBoxLayout(field.row);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(field.edit, 1);
    row->addWidget(field.word);
    field.edit->setObjectName(QString::fromLatin1(name));
    field.edit->setAccessibleName(QString(label).remove(QLatin1Char('&')).chopped(1));
    field.edit->setToolTip(explanation);
    // Room for every word, so that the fields do not jump while one types.
    field.word->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('m')) * 9);
    field.word->setObjectName(QString::fromLatin1(name) + QStringLiteral("Word"));
    layout_->addRow(label_for(label, field.edit), field.row);
    connect(field.edit, &QLineEdit::textChanged, this, &ConnectionForm::check);
    return field;
}

void ConnectionForm::addKinds()
{
    kind_ = new QComboBox;
    kind_->setObjectName(QStringLiteral("kind"));
    kind_->setAccessibleName(tr("Kind"));
    kind_->addItem(tr("SQLite file"), QStringLiteral("QSQLITE"));
    kind_->addItem(tr("MySQL or MariaDB server"), QStringLiteral("QMYSQL"));
    auto* row = new QHBoxLayout; // as wide as the other fields
    row->addWidget(kind_, 1);
    row->addSpacing(name_.word->minimumWidth() + name_.row->layout()->spacing());
    layout_->addRow(label_for(tr("&Kind:"), kind_), row);
    connect(kind_, &QComboBox::currentIndexChanged, this, &ConnectionForm::showFieldsOfKind);
}

void ConnectionForm::addBrowseButton() const
{
    auto* browse = new QPushButton(tr("B&rowse..."));
    browse->setObjectName(QStringLiteral("browse"));
    browse->setAutoDefault(false);
    browse->setAccessibleDescription(tr("Chooses the SQLite file"));
    static_cast<QHBoxLayout*>(file_.row->layout())->insertWidget(1, browse);
    connect(browse, &QPushButton::clicked, this, &ConnectionForm::chooseFile);
}

void ConnectionForm::chooseFile()
{
    // A name that does not exist yet may be chosen too: the database is then made.
    const QString chosen = QFileDialog::getSaveFileName(
        this, tr("SQLite file"), file_.edit->text(),
        tr("SQLite files (*.db *.sqlite);;All files (*)"), nullptr,
        QFileDialog::DontConfirmOverwrite);
    if (!chosen.isEmpty()) {
        file_.edit->setText(chosen);
    }
}

void ConnectionForm::setRecord(const DbuiConnection& record)
{
    const QString driver = dbif::to_qt(record.get_dbDriverName());
    if (kind_->findData(driver) < 0) {
        kind_->addItem(driver, driver);
    }
    kind_->setCurrentIndex(kind_->findData(driver));
    name_.edit->setText(dbif::to_qt(record.get_connectionName()));
    (isFile() ? file_ : database_).edit->setText(dbif::to_qt(record.get_databaseName()));
    host_.edit->setText(dbif::to_qt(record.get_hostname()));
    port_.edit->setText(dbif::to_qt(record.get_port_as_string()));
    user_.edit->setText(dbif::to_qt(record.get_databaseUsername()));
    password_.edit->setText(dbif::to_qt(record.get_databasePassword()));
    check();
}

void ConnectionForm::addTakenName(const std::string& name)
{
    taken_.insert(name);
    check();
}

DbuiConnection ConnectionForm::record() const
{
    const std::string driver = dbif::to_utf8(kind_->currentData().toString());
    if (isFile()) {
        return {typed(name_.edit), driver, "", "", typed(file_.edit), "", ""};
    }
    return {
        typed(name_.edit),
        driver,
        typed(host_.edit),
        typed(port_.edit),
        typed(database_.edit),
        typed(user_.edit),
        dbif::to_utf8(password_.edit->text())}; // blanks may be part of a password
}

bool ConnectionForm::isComplete() const
{
    return isComplete_;
}

bool ConnectionForm::isFile() const
{
    return kind_->currentData().toString() == QLatin1String("QSQLITE");
}

void ConnectionForm::showFieldsOfKind()
{
    const bool file = isFile();
    layout_->setRowVisible(file_.row, file);
    for (const Field& field : {host_, port_, database_, user_, password_}) {
        layout_->setRowVisible(field.row, !file);
    }
    check();
}

QString ConnectionForm::faultOfName() const
{
    const std::string name = typed(name_.edit);
    if (name.empty()) {
        return tr("needed");
    }
    return taken_.contains(name) ? tr("taken") : QString();
}

QString ConnectionForm::faultOfFile() const
{
    const QString path = dbif::to_qt(typed(file_.edit));
    if (path.isEmpty()) {
        return tr("needed");
    }
    const QFileInfo file(path);
    if (file.isDir()) {
        return tr("a folder");
    }
    return QFileInfo(file.absolutePath()).isDir() ? QString() : tr("no such folder");
}

QString ConnectionForm::faultOfPort() const
{
    const std::string text = typed(port_.edit);
    bool isNumber = false;
    const int port = dbif::to_qt(text).toInt(&isNumber);
    if (text.empty()) {
        return {};
    }
    if (!isNumber) {
        return tr("no number");
    }
    return port < 1 || port > kLargestPort ? tr("1 to 65535") : QString();
}

QString ConnectionForm::noteOnFile() const
{
    return QFileInfo::exists(dbif::to_qt(typed(file_.edit))) ? QString() : tr("new file");
}

void ConnectionForm::check()
{
    isComplete_ = true;
    const auto show = [this](const Field& field, const QString& fault, const QString& note = {}) {
        field.word->setText(fault.isEmpty() ? note : fault);
        field.edit->setAccessibleDescription(
            fault.isEmpty() ? field.edit->toolTip()
                            : field.edit->toolTip() + QStringLiteral(": ") + fault);
        isComplete_ = isComplete_ && fault.isEmpty();
    };
    const auto needed = [&show](const Field& field) {
        show(field, typed(field.edit).empty() ? tr("needed") : QString());
    };
    show(name_, faultOfName());
    if (isFile()) {
        show(file_, faultOfFile(), noteOnFile());
    } else {
        needed(host_);
        show(port_, faultOfPort());
        needed(database_);
        needed(user_);
    }
    emit changed();
}
} // namespace connection_manager
