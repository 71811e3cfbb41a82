#include "dbsuggest/masked_text.h"

#include "dbif/host/host_string.h"

#include <algorithm>
#include <vector>

namespace dbapi {
namespace {
constexpr std::string_view kOpening = "([{";
constexpr std::string_view kClosing = ")]}";

void mask(std::string* text, std::size_t begin, std::size_t end)
{
    std::fill(
        text->begin() + static_cast<std::ptrdiff_t>(begin),
        text->begin() + static_cast<std::ptrdiff_t>(end), kMasked);
}

/// Tells whether a quote at `at` opens a value: the one in "it's" does not.
bool opens_value(std::string_view text, std::size_t at)
{
    const std::size_t last = at == 0 ? text.npos : text.find_last_not_of(kBlanks, at - 1);
    return last == text.npos || std::string_view("=<>,[({").find(text[last]) != text.npos;
}

void mask_quotes(std::string* text)
{
    for (std::size_t at = text->find('\''); at != std::string::npos; at = text->find('\'', at)) {
        const std::size_t end = opens_value(*text, at) ? text->find('\'', at + 1) : text->npos;
        if (end == std::string::npos) {
            ++at;
        } else {
            mask(text, at, end + 1);
        }
    }
}
} // namespace

std::string masked_text(std::string_view text)
{
    std::string masked(text);
    mask_quotes(&masked);
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < masked.size(); ++at) {
        if (kOpening.find(masked[at]) != std::string_view::npos) {
            open.push_back(at);
            continue;
        }
        const std::size_t kind = kClosing.find(masked[at]);
        if (kind == std::string_view::npos || open.empty() ||
            masked[open.back()] != kOpening[kind]) {
            continue;
        }
        const std::size_t begin = open.back();
        open.pop_back();
        if (open.empty()) {
            mask(&masked, begin, at + 1);
        }
    }
    return masked;
}
} // namespace dbapi
