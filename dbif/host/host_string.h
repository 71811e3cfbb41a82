#pragma once

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

/// The white space that every trim of the system removes: blank, CR, LF, tab, vertical tab, form
/// feed.
inline constexpr std::string_view kBlanks = " \r\n\t\v\f";

/// The host's text class: UTF-8 bytes with 1-based positions, where 0 means 'not found' and a
/// sub-string takes an inclusive start and end. Positions and lengths count bytes. Converts from
/// and to `std::string` freely; a null `const char*` is the empty text.
class KTString
{
public:
    /// An empty text.
    KTString() = default;

    // NOLINTNEXTLINE(google-explicit-constructor)
    KTString(const char* text) : text_(text == nullptr ? "" : text) {}

    KTString(std::string text) : text_(std::move(text)) {} // NOLINT(google-explicit-constructor)

    operator std::string() const { return text_; } // NOLINT(google-explicit-constructor)

    /// The bytes of the text.
    [[nodiscard]] const std::string& str() const { return text_; }

    /// Zero-terminated; valid until the text changes or ends.
    [[nodiscard]] const char* c_str() const { return text_.c_str(); }

    /// The number of bytes.
    [[nodiscard]] std::size_t length() const { return text_.size(); }

    [[nodiscard]] bool isEmpty() const { return text_.empty(); }

    void clear() { text_.clear(); }

    /// The text without the given characters at both ends, or at its beginning only.
    [[nodiscard]] KTString trimmed(std::string_view characters = kBlanks) const;
    [[nodiscard]] KTString trimmedLeft(std::string_view characters = kBlanks) const;
    /// ASCII letters in upper case; all other bytes unchanged.
    [[nodiscard]] KTString upper() const;
    /// Position of the first occurrence of `wanted` that begins at or after `from`; 0 when there is
    /// none.
    [[nodiscard]] std::size_t search(std::string_view wanted, std::size_t from = 1) const;
    /// Bytes `first` to `last`, both inclusive, clipped to the text; empty when nothing is left.
    [[nodiscard]] KTString substring(std::size_t first, std::size_t last) const;
    /// The text before the first delimiter (the whole text when there is none).
    [[nodiscard]] KTString token(char delimiter) const;

    /// Appends bytes.
    KTString& operator+=(std::string_view more);

    friend bool operator==(const KTString& a, const KTString& b) { return a.text_ == b.text_; }

    friend bool operator!=(const KTString& a, const KTString& b) { return a.text_ != b.text_; }

private:
    std::string text_;
};

/// The shortest text that reads back to the same number.
KTString KTString_of(double number); // NOLINT(readability-identifier-naming)
/// The number of an integer text, 0 for any other text. An integer text is an optional sign and
/// decimal digits that fit an `int`, without blanks.
int KTString_to_int(const KTString& text); // NOLINT(readability-identifier-naming)
/// Tells whether the text is such an integer text.
bool is_string_integer(const KTString& text);

namespace dbif {
/// The text without blanks (`kBlanks`) at both ends, or at its beginning only.
std::string trimmed(std::string_view text);
std::string trimmed_left(std::string_view text);
/// ASCII letters in upper case; all other bytes unchanged.
std::string upper_case(std::string_view text);

/// The only conversions between the UTF-8 `std::string`s of the interface and Qt's text. Bytes that
/// are not UTF-8 become U+FFFD.
QString to_qt(std::string_view utf8);
std::string to_utf8(const QString& text);

/// Tells whether every byte belongs to a well-formed UTF-8 sequence.
bool is_utf8(std::string_view text);
} // namespace dbif
