#pragma once

#include "dbif/condition/query_enums.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi {
/// One node of a query string's tree. The tree is pure text: keywords are not resolved, values not
/// converted. Walk operands from left to right. An `Error` is the last node of such a walk, since
/// nothing behind a fault is read; so AND and OR may then hold one operand.
struct QueryNode
{
    enum class Kind {
        True,     ///< `{}`
        Term,     ///< a keyword compared with a value
        BareTerm, ///< a keyword alone, directly inside braces
        Error,    ///< a fault; `error` says which
        And,      ///< joins its operands
        Or,       ///< joins its operands
        Not       ///< one operand
    };

    Kind kind = Kind::True;
    /// For `Term`, `BareTerm` and `Error` the trimmed piece of the query that messages about it
    /// quote; else empty.
    std::string text;
    /// Where the node's piece begins, as a byte offset into the query; the end of the query when
    /// nothing is there.
    std::size_t position = 0;
    /// For `Term` and `BareTerm`, trimmed, possibly empty. The offset counts like `position`.
    std::string keyword;
    std::size_t keywordPosition = 0;
    /// For `Term`: never `NOT_NULL`, `IS_NULL`, `IN` or `NOT_IN`. The value is trimmed and as
    /// written.
    Comparator comparator = EQUAL;
    std::string value;
    std::size_t valuePosition = 0;
    /// For `Error`: the whole message, without a newline at its end.
    std::string error;
    std::vector<std::unique_ptr<QueryNode>> operands;
};

/// How deep braces, NOT and the changes between AND and OR may nest. Operands of one AND or one OR
/// do not count, however many there are.
inline constexpr std::size_t kDeepestQuery = 200;

/// Reads a query string into its tree; the caller owns it. Never null: what cannot be read becomes
/// an `Error` leaf. With `allowBareTerm`, the query may be a keyword alone. Time and memory are
/// linear in the query, and the tree is at most about `2 * kDeepestQuery` nodes deep.
std::unique_ptr<QueryNode> parse_query_syntax(std::string_view query, bool allowBareTerm);
} // namespace dbapi
