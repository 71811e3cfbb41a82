#include "tools/dbapi/wrapped_text.h"

#include "tools/dbapi/display_text.h"

#include <algorithm>

namespace dbapi::tool {
std::string wrapped_text(std::string_view text, std::size_t indent, std::size_t width)
{
    const std::string blanks(indent, ' ');
    std::string wrapped;
    while (!text.empty()) {
        const std::size_t lineEnd = std::min(text.find('\n'), text.size());
        const std::string line = display_text(text.substr(0, lineEnd));
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
        std::string shown = blanks;
        for (std::size_t begin = 0; begin < line.size();) {
            const std::size_t end = std::min(line.find(' ', begin), line.size());
            const std::string word = line.substr(begin, end - begin);
            const bool isFirst = shown.size() == indent;
            if (!isFirst && display_width(shown) + 1 + display_width(word) > width) {
                wrapped += shown + "\n";
                shown = blanks + word;
            } else {
                shown += (isFirst ? "" : " ") + word;
            }
            begin = end + 1;
        }
        wrapped += shown + "\n";
    }
    return wrapped;
}
} // namespace dbapi::tool
