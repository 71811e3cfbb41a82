#include "tools/dbapi/help/shell_words.h"

#include <string_view>

namespace dbapi::tool {
namespace {
constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                    "_-./+@%^";

bool is_plain(char letter)
{
    // A byte that is not ASCII is part of a longer letter, which no shell treats specially.
    return static_cast<unsigned char>(letter) >= 0x80 ||
           kPlain.find(letter) != std::string_view::npos;
}
} // namespace

TypedWord read_typed_word(const std::string& typed)
{
    TypedWord word;
    std::size_t at = 0;
    if (!typed.empty() && (typed[0] == '\'' || typed[0] == '"')) {
        word.quote = typed[at++];
    }
    for (; at < typed.size(); ++at) {
        if (typed[at] == word.quote) {
            continue;
        }
        if (typed[at] == '\\' && word.quote != '\'' && at + 1 < typed.size()) {
            ++at;
        }
        word.text += typed[at];
    }
    return word;
}

std::string written_word(const std::string& text, char quote)
{
    std::string written;
    for (const char letter : text) {
        if (quote == '\'') {
            written += letter == '\'' ? "'\\'" : "";
        } else if (quote == '"') {
            written +=
                std::string_view("\"\\$`").find(letter) != std::string_view::npos ? "\\" : "";
        } else {
            written += is_plain(letter) ? "" : "\\";
        }
        written += letter;
    }
    return written;
}
} // namespace dbapi::tool
