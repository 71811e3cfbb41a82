#include "tools/connection_manager/connection_manager.h"

#include "dbif/host/host_string.h"
#include "dbui/connection_listener.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_file.h"
#include "dbui/connections_path.h"
#include "dbui/guarded_file.h"

#include "tools/connection_manager/connection_editor.h"
#include "tools/connection_manager/diagnosis_view.h"
#include "tools/connection_manager/plain_boxes.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace connection_manager {
namespace {
constexpr int kListHeight = 180;
constexpr int kMoreHeight = 300; // with the result of a test

bool is_file(const DbuiConnection& record)
{
    return record.get_dbDriverName() == "QSQLITE";
}

/// Where the database is: the file, or server and database.
QString place_of(const DbuiConnection& record)
{
    if (is_file(record)) {
        return dbif::to_qt(record.get_databaseName());
    }
    const std::string port = record.get_port_as_string();
    return dbif::to_qt(
        record.get_hostname() + (port.empty() ? "" : ":" + port) + " / " +
        record.get_databaseName());
}

std::set<std::string> names_of(const std::vector<DbuiConnection>& connections)
{
    std::set<std::string> names;
    for (const DbuiConnection& connection : connections) {
        names.insert(connection.get_connectionName());
    }
    return names;
}

DbuiConnection renamed(const DbuiConnection& record, const std::string& name)
{
    return {
        name,
        record.get_dbDriverName(),
        record.get_hostname(),
        record.get_port_as_string(),
        record.get_databaseName(),
        record.get_databaseUsername(),
        record.get_databasePassword()};
}
} // namespace

ConnectionManager::ConnectionManager(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Database connections"));
    makeList();
    note_ = new QLabel;
    note_->setObjectName(QStringLiteral("note"));
    note_->setWordWrap(true);
    note_->setTextFormat(Qt::PlainText);
    diagnosis_ = new DiagnosisView;
    diagnosis_->hide();
    connect(diagnosis_, &DiagnosisView::testingChanged, this, &ConnectionManager::showButtons);
    layOut();
    addShortcuts();
    followTheFile();
    reload();
}

void ConnectionManager::makeList()
{
    list_ = new QTreeWidget;
    list_->setObjectName(QStringLiteral("connections"));
    list_->setAccessibleName(tr("Stored connections"));
    list_->setHeaderLabels({tr("Name"), tr("Kind"), tr("Database"), tr("User")});
    list_->setRootIsDecorated(false);
    list_->setAllColumnsShowFocus(true);
    list_->setUniformRowHeights(true);
    list_->setTextElideMode(Qt::ElideMiddle);
    constexpr std::array kWidths{150, 70, 320};
    for (int column = 0; column < static_cast<int>(kWidths.size()); ++column) {
        list_->header()->resizeSection(column, kWidths.at(static_cast<std::size_t>(column)));
    }
    list_->setSortingEnabled(true);
    list_->header()->setSortIndicatorClearable(true);
    list_->sortByColumn(-1, Qt::AscendingOrder); // as stored, until a heading is clicked
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &ConnectionManager::showButtons);
    connect(list_, &QTreeWidget::itemActivated, this, &ConnectionManager::editConnection);
}

QPushButton* ConnectionManager::addButton(
    const char* name,
    const QString& text,
    void (ConnectionManager::*action)()) const
{
    auto* button = new QPushButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false); // Enter belongs to the list
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

void ConnectionManager::layOut()
{
    constexpr QSize kSize(820, 360);
    add_ = addButton("add", tr("&Add..."), &ConnectionManager::addConnection);
    edit_ = addButton("edit", tr("&Edit..."), &ConnectionManager::editConnection);
    duplicate_ =
        addButton("duplicate", tr("&Duplicate..."), &ConnectionManager::duplicateConnection);
    remove_ = addButton("remove", tr("&Remove"), &ConnectionManager::removeConnection);
    test_ = addButton("test", tr("&Test"), &ConnectionManager::testConnection);
    auto* close = new QPushButton(tr("&Close"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &ConnectionManager::reject);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {add_, edit_, duplicate_, remove_, test_}) {
        buttons->addWidget(button);
    }
    buttons->addStretch();
    buttons->addWidget(close);

    auto* parts = new QSplitter(Qt::Vertical);
    parts->setChildrenCollapsible(false);
    parts->addWidget(list_);
    parts->addWidget(diagnosis_);
    parts->setSizes({kListHeight, kMoreHeight}); // the second counts once it is shown
    parts->setStretchFactor(1, 1);
    auto* left = new QVBoxLayout;
    left->addWidget(parts, 1);
    left->addWidget(note_);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);
    resize(kSize);
}

void ConnectionManager::addShortcuts()
{
    const auto add = [this](Qt::Key key, QPushButton* button) {
        auto* shortcut = new QShortcut(key, list_, nullptr, nullptr, Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
    };
    add(Qt::Key_Insert, add_);
    add(Qt::Key_Delete, remove_);
}

void ConnectionManager::followTheFile()
{
    // The listener tells of changes of this program, the watcher of those by others.
    connect(
        dbConnectionNameListener::getInstance().data(),
        &dbConnectionNameListener::connectionNamesListChanged, this, &ConnectionManager::reload);
    std::string ignored;
    dbui_make_path_if_required(dbui_connections_file(), &ignored);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &ConnectionManager::reload);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &ConnectionManager::reload);
    watchTheFile();
}

void ConnectionManager::watchTheFile()
{
    // A folder changes when a file in it is replaced, the file itself when it is written over; each
    // replaced file has to be watched anew. Behind a link, both stand somewhere else.
    const std::string path = dbui_connections_file();
    const std::string target = dbui::follow_links(path);
    const QStringList watched = watcher_.files() + watcher_.directories();
    for (const QString& wanted :
         {QFileInfo(dbif::to_qt(path)).absolutePath(),
          QFileInfo(dbif::to_qt(target)).absolutePath(), dbif::to_qt(target)}) {
        if (!watched.contains(wanted) && QFileInfo::exists(wanted)) {
            watcher_.addPath(wanted);
        }
    }
}

void ConnectionManager::reload()
{
    watchTheFile();
    std::vector<DbuiConnection> stored;
    std::string error;
    const bool isRead = dbui_get_connections_from_file(&stored, &error);
    const bool isMissing = !QFileInfo::exists(dbif::to_qt(dbui_connections_file()));
    const QString file = dbif::to_qt(dbui_connections_file());
    note_->setText(
        !isRead && !isMissing ? dbif::to_qt(error).trimmed()
        : stored.empty()
            ? tr("No connection is stored yet. Add stores the first one in %1").arg(file)
            : tr("Stored in %1").arg(file));
    if (stored == connections_ && list_->topLevelItemCount() > 0) {
        return; // whatever changed in the folder, it was not the list
    }
    const std::optional<DbuiConnection> before = selected();
    connections_ = stored;
    list_->clear();
    list_->setSortingEnabled(false); // once for all
    for (const DbuiConnection& record : connections_) {
        const QString kind = is_file(record) ? tr("SQLite")
                             : record.get_dbDriverName() == "QMYSQL"
                                 ? tr("MySQL")
                                 : dbif::to_qt(record.get_dbDriverName());
        auto* item = new QTreeWidgetItem(
            list_, {dbif::to_qt(record.get_connectionName()), kind, place_of(record),
                    dbif::to_qt(record.get_databaseUsername())});
        item->setToolTip(2, QStringLiteral("<p>%1</p>").arg(place_of(record).toHtmlEscaped()));
        item->setData(0, Qt::UserRole, list_->topLevelItemCount() - 1);
    }
    list_->setSortingEnabled(true);
    select(before ? before->get_connectionName() : std::string());
    showButtons();
}

std::optional<DbuiConnection> ConnectionManager::selected() const
{
    const QList<QTreeWidgetItem*> items = list_->selectedItems();
    if (items.isEmpty()) {
        return std::nullopt;
    }
    return connections_.at(items.front()->data(0, Qt::UserRole).toULongLong());
}

void ConnectionManager::select(const std::string& name)
{
    const QList<QTreeWidgetItem*> found =
        list_->findItems(dbif::to_qt(name), Qt::MatchExactly | Qt::MatchCaseSensitive);
    // The first one when it is not there, so that the keyboard has something to act on.
    list_->setCurrentItem(found.isEmpty() ? list_->topLevelItem(0) : found.front());
}

void ConnectionManager::showButtons()
{
    const bool isTesting = diagnosis_->isTesting();
    const bool hasSelection = !list_->selectedItems().isEmpty();
    for (QPushButton* button : {edit_, duplicate_, remove_}) {
        button->setEnabled(hasSelection);
    }
    test_->setEnabled(hasSelection || isTesting);
    test_->setText(isTesting ? tr("&Stop") : tr("&Test"));
}

void ConnectionManager::run(ConnectionEditor& editor)
{
    if (editor.exec() == QDialog::Accepted) {
        select(editor.record().get_connectionName());
    }
    list_->setFocus();
}

void ConnectionManager::addConnection()
{
    ConnectionEditor editor(tr("Add connection"), names_of(connections_), std::nullopt, this);
    run(editor);
}

void ConnectionManager::editConnection()
{
    const std::optional<DbuiConnection> old = selected();
    if (!old) {
        return;
    }
    std::set<std::string> others = names_of(connections_);
    others.erase(old->get_connectionName());
    ConnectionEditor editor(tr("Edit connection"), others, old, this);
    editor.setRecord(*old);
    run(editor);
}

void ConnectionManager::duplicateConnection()
{
    const std::optional<DbuiConnection> original = selected();
    if (!original) {
        return;
    }
    const std::set<std::string> names = names_of(connections_);
    std::string name;
    for (int i = 2; name.empty() || names.contains(name); ++i) {
        name = original->get_connectionName() + " " + std::to_string(i);
    }
    ConnectionEditor editor(tr("Duplicate connection"), names, std::nullopt, this);
    editor.setRecord(renamed(*original, name));
    run(editor);
}

void ConnectionManager::removeConnection()
{
    const std::optional<DbuiConnection> record = selected();
    const QString question =
        tr("Forget the connection \"%1\"? Its database stays as it is.")
            .arg(record ? dbif::to_qt(record->get_connectionName()) : QString());
    if (record && confirm(this, tr("Remove connection"), question)) {
        std::string error;
        if (!dbui_remove_connection(*record, false, &error)) {
            warn(this, tr("Remove connection"), dbif::to_qt(error).trimmed());
        }
    }
    list_->setFocus();
}

void ConnectionManager::testConnection()
{
    if (diagnosis_->isTesting()) {
        diagnosis_->stop();
        return;
    }
    const std::optional<DbuiConnection> record = selected();
    if (!record) {
        return;
    }
    if (!diagnosis_->isVisible()) {
        diagnosis_->show();
        resize(width(), std::max(height(), minimumSizeHint().height()) + kMoreHeight);
    }
    diagnosis_->test(*record);
}
} // namespace connection_manager
