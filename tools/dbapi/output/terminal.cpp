#include "tools/dbapi/output/terminal.h"

#include "dbsuggest/display_text.h"

#include "tools/dbapi/arguments/command_failure.h"

#include <QtGlobal>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace dbapi::tool {
namespace {
/// Reads keys one by one without echo while it lives. Also takes the keys that would stop the
/// program, so that it is never left without echo.
class SilentKeys
{
    Q_DISABLE_COPY_MOVE(SilentKeys)

public:
    SilentKeys()
    {
        tcgetattr(STDIN_FILENO, &before_);
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
        silent.c_cc[VMIN] = 1;
        silent.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }

    ~SilentKeys() { tcsetattr(STDIN_FILENO, TCSADRAIN, &before_); }

    /// The next key; that for 'end of input' when there is none.
    [[nodiscard]] static char next()
    {
        char key = kEndOfInput;
        return read(STDIN_FILENO, &key, 1) == 1 ? key : kEndOfInput;
    }

    static constexpr char kEndOfInput = '\x04';
    static constexpr char kInterrupt = '\x03';
    static constexpr char kEraseLine = '\x15';
    static constexpr std::string_view kErase = "\b\x7f";

private:
    termios before_{};
};

/// The lines of a text as they may go to a terminal, each with its end.
std::string shown_lines(const std::string& text)
{
    std::string shown;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string line = display_text(std::string_view(text).substr(begin, end - begin));
        line.erase(line.find_last_not_of(' ') + 1);
        shown += line + "\n";
        begin = end + 1;
    }
    return shown;
}
} // namespace

bool is_terminal(std::FILE* stream)
{
    return isatty(fileno(stream)) == 1;
}

TerminalSize terminal_size(std::FILE* stream)
{
    TerminalSize size;
    winsize window{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &window) == 0 && window.ws_row > 0 && window.ws_col > 0) {
        size.rows = window.ws_row;
        size.columns = window.ws_col;
    }
    return size;
}

std::size_t line_width()
{
    constexpr std::size_t kUsualWidth = 100;
    return is_terminal(stdout) ? terminal_size(stdout).columns : kUsualWidth;
}

bool shows_colours(std::FILE* stream)
{
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return is_terminal(stream) && (noColour == nullptr || *noColour == '\0') &&
           terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::string styled(const std::string& text, Style style, std::FILE* stream)
{
    if (style == Style::Plain || !shows_colours(stream)) {
        return text;
    }
    return style == Style::Bold ? bold_text(text) : "\x1b[1;31m" + text + "\x1b[0m";
}

void talk(const std::string& text)
{
    std::fputs(shown_lines(text).c_str(), stderr);
}

void tell_error(const std::string& text)
{
    const std::string name = styled("dbapi:", Style::Alert, stderr);
    std::fputs((name + " " + shown_lines(text)).c_str(), stderr);
}

std::string ask_secretly(const std::string& prompt)
{
    std::string line;
    const SilentKeys keys; // before the prompt, so that no early key is shown or lost
    std::fputs(display_text(prompt).c_str(), stderr);
    std::fflush(stderr);
    for (;;) {
        const char key = SilentKeys::next();
        if (key == '\n' || key == '\r' || key == SilentKeys::kEndOfInput) {
            break;
        }
        if (key == SilentKeys::kInterrupt) {
            talk("");
            throw CommandFailure(ExitCode::WrongUsage, "given up, nothing was changed");
        }
        if (key == SilentKeys::kEraseLine) {
            line.clear();
        } else if (SilentKeys::kErase.find(key) == std::string_view::npos) {
            line += key;
        } else if (!line.empty()) {
            line.pop_back();
        }
    }
    talk("");
    return line;
}

ProgressBar::ProgressBar(std::string what, std::uintmax_t total)
    : what_(std::move(what)), total_(total), isShown_(total > 0 && is_terminal(stderr))
{}

ProgressBar::~ProgressBar()
{
    if (isShown_) {
        std::fputs("\r\x1b[K", stderr);
    }
}

void ProgressBar::advance(std::uintmax_t amount)
{
    done_ = std::min(done_ + amount, total_);
    const auto percent = isShown_ ? static_cast<std::size_t>(100 * done_ / total_) : shownPercent_;
    if (percent == shownPercent_) {
        return;
    }
    shownPercent_ = percent;
    constexpr std::size_t kCells = 30;
    const std::size_t full = percent * kCells / 100;
    const std::string bar = std::string(full, '#') + std::string(kCells - full, '.');
    std::fputs(("\r" + what_ + " [" + bar + "] " + std::to_string(percent) + " %").c_str(), stderr);
    std::fflush(stderr);
}
} // namespace dbapi::tool
