#pragma once

#include "dbif/host/host_string.h"

#include <string>

/// Rewrites the numbers of a query value, one or several between commas, in their canonical decimal
/// form, with a comma and a blank between them: "1u,2.5m" becomes "1e-06, 0.0025". Numbers are read
/// in engineering notation; one in single quotes is written in quotes. A text that has only
/// characters of numbers but is none, such as "1..2", becomes "nan", which the condition refuses.
///
/// `expectedCount` is how many numbers there must be; below 1, any number of them. On failure the
/// result is false, `converted` empty and `errors` one message. `converted` may be `value` itself;
/// neither pointer may be null.
bool convert_value_str_to_proper_value_double_str(
    const std::string& value,
    int expectedCount,
    std::string* converted,
    KTString* errors);

/// Tells whether the text, which must be trimmed, has a digit and otherwise only characters that a
/// number in engineering notation may have. Their order is left to the reader of numbers.
bool string_has_valid_enot_to_dbl_chars(const std::string& text);
