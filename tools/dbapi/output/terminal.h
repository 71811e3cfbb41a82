#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace dbapi::tool {
/// Tells whether the stream ("stdin" included) is a terminal.
bool is_terminal(std::FILE* stream);

struct TerminalSize
{
    std::size_t rows = 24;
    std::size_t columns = 80;
};

/// The size of the terminal that the stream is; a usual one where it cannot be told.
TerminalSize terminal_size(std::FILE* stream);

/// The width of lines for people on standard output: that of the terminal, a usual one elsewhere.
std::size_t line_width();

/// Tells whether the stream is a terminal that shows colours, and NO_COLOR is not set.
bool shows_colours(std::FILE* stream);

enum class Style { Plain, Bold, Alert };

/// The text in a style, where the stream is a terminal that shows colours and NO_COLOR is not set.
std::string styled(const std::string& text, Style style, std::FILE* stream);

// Both write characters that must not go to a terminal as escapes.

/// Writes the text, which may have several lines, to the standard error stream.
void talk(const std::string& text);
/// The same behind "dbapi: ".
void tell_error(const std::string& text);

/// Asks for a line on the terminal without showing what is typed. Throws `CommandFailure` when the
/// user gives up. Call only when standard input is a terminal.
std::string ask_secretly(const std::string& prompt);

/// A bar on the standard error stream that shows how far something is, where that is a terminal;
/// elsewhere it does nothing. It is gone when this object is.
class ProgressBar
{
    Q_DISABLE_COPY_MOVE(ProgressBar)

public:
    ProgressBar(std::string what, std::uintmax_t total);
    ~ProgressBar();

    void advance(std::uintmax_t amount);

private:
    std::string what_;
    std::uintmax_t total_;
    std::uintmax_t done_ = 0;
    std::size_t shownPercent_ = 101;
    bool isShown_;
};
} // namespace dbapi::tool
