#pragma once

#include "dbsuggest/rewriting.h"

#include <optional>
#include <string>

namespace dbapi {
/// A single comparison that is written by the rules of another language: with bounds on both sides
/// ("1u<W<5u"), turned ("5u>W"), or with a comparator that is none ("==", "=<", "< ="). Nothing for
/// one in which none of these is found. Texts only.
std::optional<Rewriting> rewrite_comparison(const std::string& term);
} // namespace dbapi
