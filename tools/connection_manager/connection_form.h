#pragma once

#include "dbui/connection_record.h"

#include <QWidget>

#include <set>
#include <string>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;

namespace connection_manager {
/// The fields of a connection, those of a file or those of a server. Each field says in a word
/// beside it, while it is typed, what is wrong with it.
class ConnectionForm : public QWidget
{
    Q_OBJECT

public:
    /// `taken` holds the names that other connections have.
    explicit ConnectionForm(std::set<std::string> taken, QWidget* parent = nullptr);

    void setRecord(const DbuiConnection& record);
    /// Another program has stored a connection of this name.
    void addTakenName(const std::string& name);
    /// The typed texts, without blanks around them; only the fields that the kind of database has.
    [[nodiscard]] DbuiConnection record() const;
    /// Tells whether nothing is missing or wrong.
    [[nodiscard]] bool isComplete() const;

signals:
    void changed();

private:
    /// A line to type in, with its label and the word beside it.
    struct Field
    {
        QWidget* row = nullptr;
        QLineEdit* edit = nullptr;
        QLabel* word = nullptr;
    };

    Field addField(const char* name, const QString& label, const QString& explanation);
    void addKinds();
    void addBrowseButton() const;
    void chooseFile();
    void showFieldsOfKind();
    void check();
    [[nodiscard]] bool isFile() const;
    [[nodiscard]] QString faultOfName() const;
    [[nodiscard]] QString faultOfFile() const;
    [[nodiscard]] QString faultOfPort() const;
    /// Nothing wrong, but worth knowing.
    [[nodiscard]] QString noteOnFile() const;

    std::set<std::string> taken_;
    QFormLayout* layout_;
    QComboBox* kind_ = nullptr;
    Field name_;
    Field file_;
    Field host_;
    Field port_;
    Field database_;
    Field user_;
    Field password_;
    bool isComplete_ = false;
};
} // namespace connection_manager
