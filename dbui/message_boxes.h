#pragma once

#include <QtGlobal>

#include <string>

/// Message boxes, for calls that may show their outcome to the user. This library links no windows:
/// the boxes come from whoever registers them, as `dbui::register_message_boxes` of the library
/// `dbui_dialogs` does. Where nobody did, or there is no `QApplication`, an interactive call
/// behaves as one that is not. All texts are UTF-8 and shown as they are, never as markup.
namespace dbui {
class MessageBoxes
{
    Q_DISABLE_COPY_MOVE(MessageBoxes)

public:
    enum class Kind { Information, Warning, Critical };

    virtual ~MessageBoxes() = default;

    /// Whether a box can be shown at the moment.
    [[nodiscard]] virtual bool areShown() const = 0;
    /// Shows one box with an Ok button and returns when it is closed.
    virtual void show(Kind kind, const std::string& title, const std::string& text) = 0;
    /// Whether the user answers with Yes, the default.
    virtual bool ask(const std::string& title, const std::string& question) = 0;

protected:
    MessageBoxes() = default;
};

/// Interactive calls show these boxes from now on, or none where `boxes` is null. They stay the
/// caller's and outlive their use. Call in the thread that makes the interactive calls.
void set_message_boxes(MessageBoxes* boxes);

/// Whether a call that is `interactive` can show boxes here.
bool shows_boxes(bool interactive);

/// As `MessageBoxes` has them. Call only where `shows_boxes`.
void show_information(const std::string& title, const std::string& text);
void show_warning(const std::string& title, const std::string& text);
void show_critical(const std::string& title, const std::string& text);
bool ask_yes_or_no(const std::string& title, const std::string& question);

/// Tells a failure by every way that is open: it is assigned to `error` when that is given, and
/// shown as critical when interactive; when neither, it goes to the standard error stream.
void report_failure(
    bool interactive,
    const std::string& title,
    const std::string& message,
    std::string* error);
} // namespace dbui
