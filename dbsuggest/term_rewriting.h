#pragma once

#include "dbsuggest/rewriting.h"

#include <optional>
#include <string>
#include <string_view>

// Terms of query strings that are written by the rules of other languages. Texts only.

namespace dbapi {
/// A term that holds several, or that is compared otherwise than query strings compare:
///
///     W=5u AND L=1u, W=5u and L=1u     {W=5u} AND {L=1u}
///     W=5u OR 6u                       W=5u,6u
///     1u<W<5u, 1u<=W<=5u, 5u>W         W>1u;W<5u, W=[1u,5u], W<5u
///     W==5u, W=<5u, W=>5u              W=5u, W<=5u, W>=5u
///     W in (1u,2u), W in [1u,2u]       W=1u,2u, W=[1u,2u]
///     W between 1u and 2u              W=[1u,2u]
///     NOT W=5u, not {W=5u}             NOT KEY(W)=5u
///
/// Nothing for a term in which none of these is found, and for one of more than 2000 bytes.
std::optional<Rewriting> rewrite_term(const std::string& term);

/// Where in a value that has been through `masked_text` another term begins: at AND or OR, or at a
/// comparator; npos where none does. Small letters count when a comparator follows.
std::size_t find_second_term(std::string_view masked);

/// The rule about connectors for a text that begins with one ("and {L=1u}", "&& {L=1u}", "{L=1u}")
/// and the text with the right one; nothing for any other text.
std::optional<Rewriting> rewrite_connector(const std::string& text);
} // namespace dbapi
