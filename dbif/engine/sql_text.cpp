#include "dbif/engine/sql_text.h"

#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <algorithm>

namespace dbif {
namespace {
bool is_plain_name(std::string_view name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || c == '_';
    });
}

void append_quoted(std::string_view text, char quote, std::string* out)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    *out += quote;
    for (const char c : text) {
        if (c == '\0') {
            *out += kReplacement;
            continue;
        }
        *out += c;
        if (c == quote) {
            *out += c;
        }
    }
    *out += quote;
}
} // namespace

SqlText& SqlText::operator<<(const SqlName& name)
{
    if (is_plain_name(name.name)) {
        text_ += name.name;
    } else {
        append_quoted(name.name, '"', &text_);
    }
    return *this;
}

SqlText& SqlText::operator<<(const SqlLiteral& literal)
{
    append_quoted(literal.text, '\'', &text_);
    return *this;
}

SqlText& SqlText::operator<<(const SqlBlob& blob)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    text_ += "X'";
    for (const char c : blob.bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text_ += kDigits[byte >> 4U];
        text_ += kDigits[byte & 15U];
    }
    text_ += "'";
    return *this;
}

SqlText& SqlText::operator<<(double number)
{
    text_ += double_text(number);
    return *this;
}

SqlText& SqlText::operator<<(long long number)
{
    text_ += std::to_string(number);
    return *this;
}

QString SqlText::toQt() const
{
    return to_qt(text_);
}

SqlText qualified(std::string_view table, std::string_view column)
{
    SqlText text;
    text << SqlName(table) << "." << SqlName(column);
    return text;
}
} // namespace dbif
