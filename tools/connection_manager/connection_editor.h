#pragma once

#include "dbui/connection_record.h"
#include "dbui/connection_storing.h"

#include <QDialog>

#include <optional>
#include <set>
#include <string>

namespace connection_manager {
class ConnectionForm;

/// A dialog in which a connection is typed, checked and stored. It stays open until the connection
/// is stored or the user gives up.
class ConnectionEditor : public QDialog
{
    Q_OBJECT

public:
    /// `old` is the stored connection that is replaced; nothing when one is added.
    ConnectionEditor(
        const QString& title,
        std::set<std::string> takenNames,
        std::optional<DbuiConnection> old,
        QWidget* parent = nullptr);

    /// Fills the fields.
    void setRecord(const DbuiConnection& record);
    [[nodiscard]] DbuiConnection record() const;

    void accept() override;

private:
    /// Whether it opens, or is to be stored although it does not.
    bool isWorthStoring();
    /// Whether nothing keeps the connection from being stored; says otherwise what does.
    bool isPossible(dbui::StoreOutcome outcome, const std::string& error);
    /// Asks.
    bool mayReplaceDamagedFile();

    std::optional<DbuiConnection> old_;
    ConnectionForm* form_;
};
} // namespace connection_manager
