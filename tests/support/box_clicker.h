#pragma once

#include "dbif/host/host_string.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <string>
#include <utility>

namespace test_support {
/// Clicks a button of every message box that is shown while it lives, and notes what the box said.
class BoxClicker
{
public:
    /// `answer` is clicked where the box has it, and Ok elsewhere.
    explicit BoxClicker(QMessageBox::StandardButton answer = QMessageBox::Ok)
    {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this, answer] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr) {
                note(*box);
                QAbstractButton* button = box->button(answer);
                (button != nullptr ? button : box->button(QMessageBox::Ok))->click();
            }
        });
        timer_.start(0);
    }

    /// The boxes since the last call, each "icon: title: text[button][default button*]".
    std::string take() { return std::exchange(text_, std::string()); }

private:
    void note(const QMessageBox& box)
    {
        static constexpr const char* kIcons[] = {
            "none", "information", "warning", "critical", "question"};
        text_ += std::string(kIcons[box.icon()]) + ": " + dbif::to_utf8(box.windowTitle()) + ": " +
                 dbif::to_utf8(box.text());
        for (const QAbstractButton* button : box.buttons()) {
            text_ +=
                "[" + dbif::to_utf8(button->text()) + (button == box.defaultButton() ? "*]" : "]");
        }
    }

    std::string text_;
    QTimer timer_;
};
} // namespace test_support
