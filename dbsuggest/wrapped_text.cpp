#include "dbsuggest/wrapped_text.h"

#include "dbsuggest/display_text.h"

#include <algorithm>

namespace dbapi {
namespace {
std::string wrapped_line(const std::string& line, const std::string& blanks, std::size_t width)
{
    std::string wrapped;
    std::string shown = blanks;
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = std::min(line.find(' ', begin), line.size());
        const std::string word = line.substr(begin, end - begin);
        const bool isFirst = shown.size() == blanks.size();
        if (isFirst || display_width(shown) + 1 + display_width(word) <= width) {
            shown += (isFirst ? "" : " ") + word;
        } else {
            wrapped += shown + "\n";
            shown = blanks + word;
        }
        begin = end + 1;
    }
    return wrapped + shown + "\n";
}
} // namespace

std::string wrapped_text(std::string_view text, std::size_t indent, std::size_t width)
{
    const std::string blanks(indent, ' ');
    std::string wrapped;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        wrapped += wrapped_line(display_text(text.substr(0, end)), blanks, width);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return wrapped;
}
} // namespace dbapi
