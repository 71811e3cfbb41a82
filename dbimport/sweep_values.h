#pragma once

#include "dbif/host/host_number.h"
#include "dbif/write/record_writer.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <system_error>

namespace dbapi {
/// A finite number in plain decimal notation. Allocates nothing.
inline bool read_plain(std::string_view text, double* number)
{
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, *number);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(*number);
}

/// A number in plain decimal or engineering notation. False for a text that is no finite number.
inline bool read_number(std::string_view text, double* number)
{
    if (read_plain(text, number)) {
        return true;
    }
    *number = dbif::read_engineering_number(text);
    return std::isfinite(*number);
}

/// Makes the value of a record's key from its text, which is not empty. False, with the reason in
/// `reason`, when the text is no value of the key's kind.
bool set_key_value(const std::string& text, dbif::KeyValue* key, std::string* reason);

/// Makes the column of a setup, without values, that a keyword of the header row names ("IND.VG",
/// "Key(VG,setup,DOUBLE,INPUT)"). False, with the reason in `reason`, when it names none.
bool make_sweep_column(const std::string& keyword, dbif::SetupColumn* column, std::string* reason);

/// Appends the value of a cell to a column; an empty cell of a column that holds no text is 'no
/// value'. When the text is no value of the column's kind, 'no value' is appended, and the result
/// is false with the reason in `reason` (which may be null).
bool append_value(std::string_view cell, dbif::SweepArray* values, std::string* reason);
void append_no_value(dbif::SweepArray* values);

/// The text in quotes for a message, only its beginning when it is long.
std::string quoted_beginning(std::string_view text);

/// Tells whether keys can have the name; `reason` says why not.
bool is_key_name(const std::string& name, std::string* reason);

/// Tells whether a text can be stored: UTF-8 without a zero byte. `reason` says why not.
bool is_storable_text(std::string_view text, std::string* reason);

/// The sentence of the keyword splitter's error text that tells what is wrong.
std::string syntax_reason(const std::string& splitterError);
} // namespace dbapi
