#include "dbsuggest/fault_lines.h"

#include "dbapi/words/text_rules.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <string_view>

namespace dbapi {
namespace {
/// The number of columns that are shown before, of and behind the faulty place.
constexpr std::size_t kShownBefore = 50;
constexpr std::size_t kShownFault = 60;
constexpr std::size_t kShownBehind = 30;

/// The last part of a text that takes at most `width` columns.
std::string display_suffix(const std::string& text, std::size_t width)
{
    const std::size_t whole = display_width(text);
    return whole <= width ? text
                          : "..." + text.substr(display_prefix(text, whole - width + 3).size());
}

std::string marked_text(const std::string& source, std::size_t position, std::size_t length)
{
    const std::string_view text = source;
    const std::string before = display_suffix(display_text(text.substr(0, position)), kShownBefore);
    const std::string faulty(
        display_prefix(display_text(text.substr(position, length)), kShownFault));
    const std::string behind = display_text(text.substr(position + length));
    const std::string shownBehind(display_prefix(behind, kShownBehind));
    const bool isCut = shownBehind.size() < behind.size();
    const std::string mark(std::max<std::size_t>(display_width(faulty), 1), '^');
    return "  " + before + faulty + shownBehind + (isCut ? "..." : "") + "\n  " +
           std::string(display_width(before), ' ') + mark;
}

/// The line of its own that can be copied.
std::string correction(const std::string& corrected)
{
    return corrected.empty() ? "" : "\nProbably meant:\n  " + display_text(corrected);
}
} // namespace

std::string fault_lines(const Fault& fault, const std::vector<Advice>& advice)
{
    if (fault.where == Fault::Where::Nowhere) {
        return {};
    }
    std::string lines = trimmed_view(fault.source).empty()
                            ? std::string()
                            : marked_text(fault.source, fault.position, fault.length);
    std::vector<std::string> keywords;
    for (const Advice& one : advice) {
        if (one.reason.empty()) {
            keywords.push_back(one.keyword);
        } else {
            lines += (lines.empty() ? "" : "\n") + one.reason + correction(one.corrected);
        }
    }
    return keywords.empty() ? lines : lines + "\n" + suggestion(keywords).substr(1);
}

std::string note_lines(const std::string& query, const QueryNote& note)
{
    return note.text + "\n" + marked_text(query, note.position, note.length) +
           correction(note.corrected);
}
} // namespace dbapi
