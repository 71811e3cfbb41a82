#include "dbsuggest/fault_lines.h"

#include "dbapi/words/text_rules.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <string_view>

namespace dbapi {
namespace {
/// How many columns are shown before, of and behind the faulty place.
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
} // namespace

std::string fault_lines(const Fault& fault, const std::vector<std::string>& suggestions)
{
    const std::string_view text = fault.source;
    if (fault.where == Fault::Where::Nowhere || trimmed_view(text).empty()) {
        return {};
    }
    const std::string before =
        display_suffix(display_text(text.substr(0, fault.position)), kShownBefore);
    const std::string faulty(
        display_prefix(display_text(text.substr(fault.position, fault.length)), kShownFault));
    const std::string behind = display_text(text.substr(fault.position + fault.length));
    const std::string shownBehind(display_prefix(behind, kShownBehind));
    const bool isCut = shownBehind.size() < behind.size();
    const std::string mark(std::max<std::size_t>(display_width(faulty), 1), '^');
    std::string lines = "  " + before + faulty + shownBehind + (isCut ? "..." : "") + "\n  " +
                        std::string(display_width(before), ' ') + mark;
    const std::string meant = suggestion(suggestions);
    return meant.empty() ? lines : lines + "\n" + meant.substr(1);
}
} // namespace dbapi
