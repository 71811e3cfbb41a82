#include "dbui/message_boxes.h"

#include "dbif/host/error_text.h"

namespace dbui {
namespace {
MessageBoxes* registered = nullptr;
}

void set_message_boxes(MessageBoxes* boxes)
{
    registered = boxes;
}

bool shows_boxes(bool interactive)
{
    return interactive && registered != nullptr && registered->areShown();
}

void show_information(const std::string& title, const std::string& text)
{
    registered->show(MessageBoxes::Kind::Information, title, text);
}

void show_warning(const std::string& title, const std::string& text)
{
    registered->show(MessageBoxes::Kind::Warning, title, text);
}

void show_critical(const std::string& title, const std::string& text)
{
    registered->show(MessageBoxes::Kind::Critical, title, text);
}

bool ask_yes_or_no(const std::string& title, const std::string& question)
{
    return registered->ask(title, question);
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
