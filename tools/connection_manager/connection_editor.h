#pragma once

#include "dbui/connection_record.h"
#include "dbui/connection_storing.h"

#include "tools/connection_manager/opening_run.h"

#include <QDialog>
#include <QSharedPointer>

#include <optional>
#include <set>
#include <string>

class QLabel;
class QPushButton;

namespace connection_manager {
class ConnectionForm;
class DiagnosisView;

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

    /// Opens the connection, and stores it when it opens or the user wants it all the same.
    void accept() override;
    /// Gives the opening up, or else closes.
    void reject() override;

private:
    void open(OpeningRun::MissingDatabase missing);
    void finishOpening(const Opening& opening);
    void endOpening();
    void store();
    void test();
    void showState();
    /// Tells whether nothing keeps the connection from being stored; says otherwise what does.
    bool isPossible(dbui::StoreOutcome outcome, const std::string& error);
    /// Asks.
    bool mayReplaceDamagedFile();

    std::optional<DbuiConnection> old_;
    ConnectionForm* form_;
    QLabel* progress_;
    DiagnosisView* diagnosis_;
    QPushButton* test_ = nullptr;
    QPushButton* store_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QSharedPointer<OpeningRun> opening_; // while the connection is being opened
};
} // namespace connection_manager
