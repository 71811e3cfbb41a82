#pragma once

#include "dbif/condition/query_enums.h"
#include "dbsuggest/rewriting.h"

#include <optional>
#include <string>
#include <string_view>

// Values of query terms that are not written as query strings have them. Texts only: whether a key
// holds numbers is not known here.

namespace dbapi {
/// A value that was to be one or several numbers: with a unit behind ("1um" is 1u), with a decimal
/// comma, or a range that is not written as one ("0.5u..1u" is [0.5u,1u]). Nothing where none of
/// these is at fault.
std::optional<Rewriting> rewrite_number_value(const std::string& value, Comparator comparator);

/// Tells whether one of the values in a list is a pattern with a wild card ("nfet*", "%_m1").
bool has_wild_card(const std::string& value);

/// The whole term for one that compares a key with a pattern: the range of all texts with that
/// beginning, where the pattern is one, and words alone otherwise.
Rewriting rewrite_wild_card(const std::string& keyword, const std::string& pattern);
} // namespace dbapi
