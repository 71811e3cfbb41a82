#include "dbui/message_boxes.h"

#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

#include <QApplication>
#include <QMessageBox>

namespace {
int show_box(
    QMessageBox::Icon icon,
    const std::string& title,
    const std::string& text,
    QMessageBox::StandardButtons buttons = QMessageBox::Ok,
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton)
{
    QMessageBox box(icon, dbif::to_qt(title), dbif::to_qt(text), buttons);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(defaultButton);
    return box.exec();
}
} // namespace

namespace dbui {
bool shows_boxes(bool interactive)
{
    return interactive && qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

void show_information(const std::string& title, const std::string& text)
{
    show_box(QMessageBox::Information, title, text);
}

void show_warning(const std::string& title, const std::string& text)
{
    show_box(QMessageBox::Warning, title, text);
}

void show_critical(const std::string& title, const std::string& text)
{
    show_box(QMessageBox::Critical, title, text);
}

bool ask_yes_or_no(const std::string& title, const std::string& question)
{
    return show_box(
               QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No,
               QMessageBox::Yes) == QMessageBox::Yes;
}

void report_failure(
    bool interactive,
    const std::string& title,
    const std::string& message,
    std::string* error)
{
    const bool shown = shows_boxes(interactive);
    if (error != nullptr || !shown) {
        dbif::deliver_error(error, message);
    }
    if (shown) {
        show_critical(title, message);
    }
}
} // namespace dbui
