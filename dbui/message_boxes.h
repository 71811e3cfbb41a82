#pragma once

#include <QtGlobal>

#include <string>

/// Message boxes, for calls that may show their outcome to the user. This library links no windows:
/// the boxes come from whoever registers them, as `dbui::register_message_boxes` of the library
/// `dbui_dialogs` does. Where nobody did, or there is no `QApplication`, an interactive call
/// behaves as one that is not. All texts are UTF-8 and shown as they are, never as markup.
namespace dbui {
/// The boxes that a host shows. Called in the thread that makes the interactive calls.
class MessageBoxes
{
    Q_DISABLE_COPY_MOVE(MessageBoxes)

public:
    /// The icon of a box.
    enum class Kind { Information, Warning, Critical };

    virtual ~MessageBoxes() = default;

    /// Tells whether a box can be shown at the moment.
    [[nodiscard]] virtual bool areShown() const = 0;
    /// Shows one box with an Ok button and returns when it is closed. Texts are UTF-8.
    virtual void show(Kind kind, const std::string& title, const std::string& text) = 0;
    /// Shows a question with Yes, the default, and No; true when the user answers with Yes.
    virtual bool ask(const std::string& title, const std::string& question) = 0;

protected:
    MessageBoxes() = default;
};

/// Interactive calls show these boxes from now on, or none where `boxes` is null. They stay the
/// caller's and outlive their use. Call in the thread that makes the interactive calls.
void set_message_boxes(MessageBoxes* boxes);

/// Tells whether a call shows boxes: it is `interactive`, boxes are registered, and they can be
/// shown.
bool shows_boxes(bool interactive);

/// Show a box, or ask, by the registered boxes. Called only where `shows_boxes` is true.
void show_information(const std::string& title, const std::string& text);
void show_warning(const std::string& title, const std::string& text);
void show_critical(const std::string& title, const std::string& text);
bool ask_yes_or_no(const std::string& title, const std::string& question);

/// Reports a failure by every way that is open: `message` is assigned to `error` when that is
/// given, and shown as critical where `shows_boxes`; when neither applies, it goes to the standard
/// error stream.
void report_failure(
    bool interactive,
    const std::string& title,
    const std::string& message,
    std::string* error);
} // namespace dbui
