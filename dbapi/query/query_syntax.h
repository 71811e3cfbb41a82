#pragma once

#include "dbapi/words/fault.h"
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
        Error,    ///< a fault; `fault` says which
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
    /// For `Error`: what is wrong, with its place in the query; the message has no newline at its
    /// end. Null for every other kind.
    std::unique_ptr<Fault> fault;
    std::vector<std::unique_ptr<QueryNode>> operands;
};

/// A part of a query string that the grammar passes over: it selects nothing.
struct IgnoredText
{
    enum class Reason {
        BehindGroup,     ///< behind braces, and neither ";" nor AND nor OR comes first
        BehindEmptyGroup ///< behind "{}", which selects everything, whatever follows
    };

    /// In bytes of the query string, without blanks around it.
    std::size_t position = 0;
    std::size_t length = 0;
    Reason reason = Reason::BehindGroup;
};

/// A query string, read once: its terms and their joins.
struct QueryTree
{
    /// As the caller gave it. Positions count in it.
    std::string query;
    /// False when it begins with "ALLDATA:".
    bool latestOnly = true;
    /// The query behind the command, trimmed.
    std::string rest;
    /// A piece that cannot be read is an `Error` leaf. Null for a query that is empty behind the
    /// command.
    std::unique_ptr<QueryNode> root;
    std::vector<IgnoredText> ignored;
};

/// The depth to which braces and NOT may nest. Chains of terms do not count, however long they are
/// and however often they change between AND and OR.
inline constexpr std::size_t kDeepestQuery = 200;

/// Reads a query string. Throws `FaultError` for a misplaced "ALLDATA", and for nothing else. Time
/// and memory are linear in the query.
QueryTree parse_query(const std::string& query);

/// Reads a query string that has no command; `root` is never null. With `allowBareTerm`, the query
/// may be a keyword alone.
QueryTree parse_query_syntax(const std::string& query, bool allowBareTerm);

/// The first syntax error from the left; null when there is none. It lives as long as the tree.
const Fault* find_syntax_fault(const QueryNode& tree);
} // namespace dbapi
