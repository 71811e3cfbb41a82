#include "tools/connection_manager/plain_boxes.h"

#include <QMessageBox>

namespace connection_manager {
void warn(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool confirm(QWidget* parent, const QString& title, const QString& question)
{
    QMessageBox box(
        QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}
} // namespace connection_manager
