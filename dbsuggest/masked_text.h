#pragma once

#include <string>
#include <string_view>

namespace dbapi {
/// Stands for each byte that is masked.
inline constexpr char kMasked = '\x01';

/// A text of the same length in which values in single quotes, and pairs of (), [] and {} with all
/// that they hold, are masked: what is found in it stands outside of them. Quotes and brackets
/// without their other half stay as they are.
std::string masked_text(std::string_view text);
} // namespace dbapi
