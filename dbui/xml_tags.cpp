#include "dbui/xml_tags.h"

#include <algorithm>
#include <cstddef>

namespace dbui {
namespace {
constexpr std::size_t kMostAttributes = 64;

/// The position behind `end`, searched for from `begin` on; the end of the document when it is not
/// found.
std::size_t behind(std::string_view document, std::string_view end, std::size_t begin)
{
    const std::size_t at = document.find(end, begin);
    return at == std::string_view::npos ? document.size() : at + end.size();
}
} // namespace

bool has_crowded_tag(std::string_view document)
{
    constexpr std::string_view kComment = "<!--";
    constexpr std::string_view kData = "<![CDATA[";
    std::size_t at = document.find('<');
    while (at < document.size()) {
        const std::string_view rest = document.substr(at);
        if (rest.starts_with(kComment)) {
            at = behind(document, "-->", at + kComment.size());
        } else if (rest.starts_with(kData)) {
            at = behind(document, "]]>", at + kData.size());
        } else {
            // A value stands in quotes, within which a '>' does not end the tag.
            std::size_t values = 0;
            at = std::min(document.find_first_of("\"'>", at), document.size());
            while (at < document.size() && document[at] != '>') {
                if (++values > kMostAttributes) {
                    return true;
                }
                at = behind(document, document.substr(at, 1), at + 1);
                at = std::min(document.find_first_of("\"'>", at), document.size());
            }
        }
        at = document.find('<', at);
    }
    return false;
}
} // namespace dbui
