#pragma once

#include "dbif/condition/query_enums.h"

#include <cstddef>
#include <string>

// How the value of a query term is taken apart before it becomes a condition. Values are passed
// trimmed. Nothing here knows whether a key holds numbers.

namespace dbapi {
/// The values between the commas of "a, 'b,c', d": each in single quotes, joined by ", ". Commas
/// between a pair of quotes do not separate, empty values are left out.
struct ValueList
{
    std::string joined;
    std::size_t count = 0;
    /// A quote without its other half was found; the rest is then empty.
    bool isMismatched = false;
};

ValueList split_value_list(const std::string& value);

/// The value text and comparator of the one condition that a value list makes.
struct ListComparison
{
    Comparator comparator;
    std::string value;
};

/// `comparator` is `EQUAL` or `NOT_EQUAL`, and becomes `IN` or `NOT_IN` for two or more values. The
/// outer pair of quotes is removed and the inner ones stay ("a', 'b"): the condition takes the text
/// apart at "', '".
ListComparison
compare_with_list(const std::string& joined, std::size_t count, Comparator comparator);

/// Tells whether the value is written as a range, "[Min,Max]", be it a proper one or not.
bool is_range(const std::string& value);
/// The bounds of a range, untrimmed. False, with empty outputs, unless there are two that are not
/// blank.
bool split_range(const std::string& value, std::string* minimum, std::string* maximum);

/// The text without one pair of single quotes around it, if it has one; a lone quote counts as a
/// pair.
std::string without_quotes(const std::string& text);

/// The parse's error texts for the piece of the query that holds the term, the term's keyword and
/// its value.
std::string mismatched_quote_message(
    const std::string& piece,
    const std::string& keyword,
    const std::string& value,
    Comparator comparator);
std::string invalid_range_message(
    const std::string& piece,
    const std::string& keyword,
    const std::string& value);
} // namespace dbapi
