#include "dbif/host/host_string.h"

#include <QLocale>
#include <QStringDecoder>

#include <algorithm>
#include <charconv>

namespace dbif {
std::string trimmed_left(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

std::string upper_case(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return upper;
}

QString to_qt(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string to_utf8(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool is_utf8(std::string_view text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    // Decoding happens in the conversion.
    const QString decoded =
        decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
    return !decoder.hasError();
}
} // namespace dbif

KTString KTString::trimmed(std::string_view characters) const
{
    const std::size_t last = text_.find_last_not_of(characters);
    return last == std::string::npos ? KTString()
                                     : KTString(text_.substr(0, last + 1)).trimmedLeft(characters);
}

KTString KTString::trimmedLeft(std::string_view characters) const
{
    const std::size_t first = text_.find_first_not_of(characters);
    return first == std::string::npos ? KTString() : KTString(text_.substr(first));
}

KTString KTString::upper() const
{
    return dbif::upper_case(text_);
}

std::size_t KTString::search(std::string_view wanted, std::size_t from) const
{
    const std::size_t found = text_.find(wanted, from == 0 ? 0 : from - 1);
    return found == std::string::npos ? 0 : found + 1;
}

KTString KTString::substring(std::size_t first, std::size_t last) const
{
    first = std::max<std::size_t>(first, 1);
    last = std::min(last, text_.size());
    return first > last ? KTString() : KTString(text_.substr(first - 1, last - first + 1));
}

KTString KTString::token(char delimiter) const
{
    return text_.substr(0, text_.find(delimiter));
}

KTString& KTString::operator+=(std::string_view more)
{
    text_.append(more);
    return *this;
}

KTString KTString_of(double number) // NOLINT(readability-identifier-naming)
{
    return dbif::to_utf8(QString::number(number, 'g', QLocale::FloatingPointShortest));
}

namespace {
bool read_integer(const std::string& text, int* number)
{
    // from_chars takes a minus sign only.
    const std::size_t plus = text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + plus, end, *number);
    return error == std::errc() && stop == end;
}
} // namespace

int KTString_to_int(const KTString& text) // NOLINT(readability-identifier-naming)
{
    int number = 0;
    return read_integer(text.str(), &number) ? number : 0;
}

bool is_string_integer(const KTString& text)
{
    int number = 0;
    return read_integer(text.str(), &number);
}
