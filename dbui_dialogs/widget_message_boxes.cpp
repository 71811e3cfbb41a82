#include "dbui_dialogs/widget_message_boxes.h"

#include "dbif/host/host_string.h"
#include "dbui/message_boxes.h"

#include <QApplication>
#include <QMessageBox>

namespace dbui {
namespace {
class WidgetMessageBoxes final : public MessageBoxes
{
public:
    [[nodiscard]] bool areShown() const override
    {
        return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
    }

    void show(Kind kind, const std::string& title, const std::string& text) override
    {
        exec(icon_of(kind), title, text, QMessageBox::Ok, QMessageBox::NoButton);
    }

    bool ask(const std::string& title, const std::string& question) override
    {
        return exec(
                   QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No,
                   QMessageBox::Yes) == QMessageBox::Yes;
    }

private:
    static QMessageBox::Icon icon_of(Kind kind)
    {
        switch (kind) {
        case Kind::Information:
            return QMessageBox::Information;
        case Kind::Warning:
            return QMessageBox::Warning;
        case Kind::Critical:
            break;
        }
        return QMessageBox::Critical;
    }

    static int exec(
        QMessageBox::Icon icon,
        const std::string& title,
        const std::string& text,
        QMessageBox::StandardButtons buttons,
        QMessageBox::StandardButton defaultButton)
    {
        QMessageBox box(icon, dbif::to_qt(title), dbif::to_qt(text), buttons);
        box.setTextFormat(Qt::PlainText);
        box.setDefaultButton(defaultButton);
        return box.exec();
    }
};
} // namespace

void register_message_boxes()
{
    static WidgetMessageBoxes boxes;
    set_message_boxes(&boxes);
}
} // namespace dbui
