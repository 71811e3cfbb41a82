#pragma once

#include <string_view>

namespace dbui {
/// Tells whether a tag of the XML document has more than 64 attributes. The XML library compares
/// each attribute of a tag with all others, so that a million bytes of them keep it busy for most
/// of a minute. Of a damaged document any answer is right.
bool has_crowded_tag(std::string_view document);
} // namespace dbui
