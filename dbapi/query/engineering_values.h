#pragma once

#include <cstddef>
#include <string>

namespace dbapi {
/// Numbers of a query value, in canonical decimal form.
struct ConvertedValues
{
    enum class Fault { None, NoNumber, WrongCount };

    Fault fault = Fault::None;
    /// Joined by ", ", those that were quoted in quotes; on a fault, the message.
    std::string text;
    /// False when a text has only characters of numbers but is none, such as "1..2" or "1um", or is
    /// beyond what a double holds. It then stands in `text` as "nan" or "inf".
    bool hasOnlyNumbers = false;
};

/// Reads one number or several between commas, in engineering notation, each possibly in single
/// quotes. `expectedCount` is how many there must be; below 1, any number of them.
ConvertedValues convert_values(const std::string& value, int expectedCount);

/// Tells whether a trimmed text has a digit and otherwise only characters that a number in
/// engineering notation may have. Their order is left to the reader of numbers.
bool has_characters_of_number(const std::string& text);

/// A piece of a text, in bytes.
struct TextPlace
{
    std::size_t position = 0;
    std::size_t length = 0;
};

/// The first of the values in a list or range that is no number; all of it when each is one.
TextPlace place_of_no_number(const std::string& value);
} // namespace dbapi
