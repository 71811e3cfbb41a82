#include "dbapi/words/text_rules.h"

#include "dbif/host/host_string.h"

void dbapi_tokenize(std::vector<std::string>& out, const std::string& text, char delimiter)
{
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = text.find(delimiter, begin);
        if (end == std::string::npos) {
            out.push_back(text.substr(begin));
            return;
        }
        out.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

namespace dbapi {
std::string normalised(std::string_view text)
{
    return dbif::upper_case(dbif::trimmed_left(text));
}

std::string quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

std::string_view trimmed_view(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return text.substr(0, 0);
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}
} // namespace dbapi
