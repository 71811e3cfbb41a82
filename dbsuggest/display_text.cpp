#include "dbsuggest/display_text.h"

#include "dbif/host/host_string.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace dbapi {
namespace {
/// One character of a UTF-8 text: its code point and length in bytes.
struct Character
{
    std::uint32_t code;
    std::size_t length;
    bool isValid;
};

/// How long a UTF-8 sequence is that begins with this byte; 0 when none does.
std::size_t sequence_length(unsigned char first)
{
    if (first < 0x80) {
        return 1;
    }
    if (first < 0xC2 || first > 0xF4) {
        return 0;
    }
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

Character character_at(std::string_view text, std::size_t at)
{
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = sequence_length(first);
    const std::string_view sequence = text.substr(at, length);
    if (length == 0 || sequence.size() < length || !dbif::is_utf8(sequence)) {
        return {first, 1, false};
    }
    std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (const char next : sequence.substr(1)) {
        code = code << 6U | (static_cast<unsigned char>(next) & 0x3FU);
    }
    return {code, length, true};
}

using Range = std::pair<std::uint32_t, std::uint32_t>;

template <std::size_t count>
bool is_in(const std::array<Range, count>& ranges, std::uint32_t code)
{
    return std::any_of(ranges.begin(), ranges.end(), [code](const Range& range) {
        return code >= range.first && code <= range.second;
    });
}

bool is_control(std::uint32_t code)
{
    constexpr std::array<Range, 6> kControls{
        {{0, 0x1F},
         {0x7F, 0x9F},
         {0x200E, 0x200F},
         {0x2028, 0x202E},
         {0x2066, 0x2069},
         {0xFEFF, 0xFEFF}}};
    return is_in(kControls, code);
}

std::size_t width_of(std::uint32_t code)
{
    // Combining marks and joiners; East Asian wide characters and emoji.
    constexpr std::array<Range, 5> kNone{
        {{0x300, 0x36F}, {0x1AB0, 0x1AFF}, {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}}};
    constexpr std::array<Range, 8> kWide{
        {{0x1100, 0x115F},
         {0x2E80, 0xA4CF},
         {0xAC00, 0xD7A3},
         {0xF900, 0xFAFF},
         {0xFE30, 0xFE6F},
         {0xFF00, 0xFF60},
         {0x1F300, 0x1FAFF},
         {0x20000, 0x3FFFD}}};
    if (code < 0x300) {
        return 1;
    }
    return is_in(kNone, code) ? 0 : is_in(kWide, code) ? 2 : 1;
}

std::string escape_of(const Character& character)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr std::array<std::pair<std::uint32_t, const char*>, 3> kNamed{
        {{'\n', "\\n"}, {'\t', "\\t"}, {'\r', "\\r"}}};
    for (const auto& [code, escape] : kNamed) {
        if (character.code == code) {
            return escape;
        }
    }
    const bool isByte = !character.isValid || character.code < 0x80;
    std::string escape = isByte ? "\\x" : "\\u";
    for (int shift = isByte ? 4 : 12; shift >= 0; shift -= 4) {
        escape += kDigits[character.code >> static_cast<unsigned>(shift) & 0xFU];
    }
    return escape;
}
} // namespace

std::string display_text(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Character character = character_at(text, at);
        if (character.isValid && !is_control(character.code)) {
            shown += text.substr(at, character.length);
        } else {
            shown += escape_of(character);
        }
        at += character.length;
    }
    return shown;
}

std::size_t display_width(std::string_view text)
{
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Character character = character_at(text, at);
        width += width_of(character.code);
        at += character.length;
    }
    return width;
}

std::string_view display_prefix(std::string_view text, std::size_t width)
{
    std::size_t at = 0;
    for (std::size_t taken = 0; at < text.size();) {
        const Character character = character_at(text, at);
        taken += width_of(character.code);
        if (taken > width) {
            break;
        }
        at += character.length;
    }
    return text.substr(0, at);
}

std::string display_cut(std::string_view text, std::size_t width)
{
    constexpr std::string_view kMark = "...";
    std::string shown = display_text(text);
    return display_width(shown) <= width
               ? shown
               : std::string(display_prefix(shown, width - kMark.size())).append(kMark);
}

std::string listed(const std::vector<std::string>& texts, const std::string& beforeLast)
{
    std::string list;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        list += i == 0 ? "" : i + 1 < texts.size() ? ", " : beforeLast;
        list += texts[i];
    }
    return list;
}

std::string counted(std::size_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string bold_text(const std::string& text)
{
    return "\x1b[1m" + text + "\x1b[0m";
}
} // namespace dbapi
