#pragma once

#include <string>

/// Message boxes, for calls that may show their outcome to the user. All texts are UTF-8 and shown
/// as they are, never as markup. A box needs a `QApplication`: where there is none, an interactive
/// call behaves as one that is not.
namespace dbui {
/// Whether a call that is `interactive` can show boxes here.
bool shows_boxes(bool interactive);

/// Each shows one box with an Ok button and returns when it is closed. Call only where
/// `shows_boxes`.
void show_information(const std::string& title, const std::string& text);
void show_warning(const std::string& title, const std::string& text);
void show_critical(const std::string& title, const std::string& text);

/// Whether the user answers with Yes, the default. Call only where `shows_boxes`.
bool ask_yes_or_no(const std::string& title, const std::string& question);

/// Tells a failure by every way that is open: it is assigned to `error` when that is given, and
/// shown as critical when interactive; when neither, it goes to the standard error stream.
void report_failure(
    bool interactive,
    const std::string& title,
    const std::string& message,
    std::string* error);
} // namespace dbui
