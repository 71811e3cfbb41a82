#pragma once

#include "dbui/connection_record.h"

#include <QDialog>
#include <QFileSystemWatcher>

#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace connection_manager {
class ConnectionEditor;
class DiagnosisView;

/// The window in which people keep their stored connections: the list, which follows every change
/// of the file, and what can be done with its members. Everything works by keyboard: Insert adds,
/// Enter edits, Delete removes, Escape closes, and each button has its letter.
class ConnectionManager : public QDialog
{
    Q_OBJECT

public:
    explicit ConnectionManager(QWidget* parent = nullptr);

private:
    void makeList();
    void addShortcuts();
    void layOut();
    QPushButton*
    addButton(const char* name, const QString& text, void (ConnectionManager::*action)()) const;
    void followTheFile();
    void watchTheFile();

    void reload();
    void showButtons();
    [[nodiscard]] std::optional<DbuiConnection> selected() const;
    void select(const std::string& name);

    void addConnection();
    void editConnection();
    void duplicateConnection();
    void removeConnection();
    void testConnection();
    /// Shows the editor until the connection is stored or the user gives up.
    void run(ConnectionEditor& editor);

    std::vector<DbuiConnection> connections_;
    QTreeWidget* list_ = nullptr;
    QLabel* note_ = nullptr;
    DiagnosisView* diagnosis_ = nullptr;
    QPushButton* add_ = nullptr;
    QPushButton* edit_ = nullptr;
    QPushButton* duplicate_ = nullptr;
    QPushButton* remove_ = nullptr;
    QPushButton* test_ = nullptr;
    QFileSystemWatcher watcher_;
};
} // namespace connection_manager
