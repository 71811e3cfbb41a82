#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi {
/// Why a call failed. A fault is made where it is seen (by the parser, by the resolution of a
/// keyword, by the conversion of a value), and carried out of the library as it is.
struct Fault
{
    enum class Kind {
        EmptyQuery,        ///< a query string, or a piece of one, without text
        UnbalancedBraces,  ///< an open brace that nothing closes
        MissingComparator, ///< a term without =, <, > and their like
        NestedTooDeep,     ///< braces and NOT within each other
        MisplacedCommand,  ///< the word ALLDATA anywhere but at the beginning, before a colon
        MismatchedQuote,   ///< a quote without its other half in a list of values
        MalformedRange,    ///< "=[Min,Max]" without two bounds
        NoNumber,          ///< a value that is no number, of a key that holds numbers
        WrongValueCount,   ///< several values, or none, where one is compared
        RefusedValue,      ///< a value that the column cannot be compared with
        MalformedKeyword,  ///< a keyword that breaks the rules
        QualifiedBuiltin,  ///< a builtin keyname with a table or attributes
        EmptyKeyword,      ///< a keyword without text
        UnknownKey,        ///< no stored key agrees with the keyword
        AmbiguousKey,      ///< several stored keys agree with the keyword
        Argument,          ///< another argument of the call that cannot be right
        Connection,        ///< a connection that is not stored, does not open, or was lost
        Cancelled,         ///< a read that its caller ended
        Memory,            ///< a result that is larger than memory, or than it was allowed to be
        Database           ///< a statement that the database refused, or damaged data
    };

    /// In which argument of the call the faulty place is.
    enum class Where { Nowhere, Query, Keyword };

    Kind kind = Kind::Database;
    /// The whole message, in UTF-8, as the call hands it out.
    std::string text;
    Where where = Where::Nowhere;
    /// The query string or keyword as the caller gave it, and the place of the faulty bytes in it.
    /// A `length` of 0 means that something is missing there.
    std::string source;
    std::size_t position = 0;
    std::size_t length = 0;
    /// For `AmbiguousKey` the keys that agree, as keywords in function form; otherwise empty.
    std::vector<std::string> candidates;

    /// The faulty bytes. They live as long as this object.
    [[nodiscard]] std::string_view piece() const
    {
        return std::string_view(source).substr(position, length);
    }

    /// The same fault with `heading` before its text.
    [[nodiscard]] Fault under(const std::string& heading) const
    {
        Fault fault = *this;
        fault.text = heading + text;
        return fault;
    }
};

/// The fault of a connection that is not stored or does not open.
inline Fault connection_fault(std::string text)
{
    return {Fault::Kind::Connection, std::move(text), Fault::Where::Nowhere, {}, 0, 0, {}};
}

/// The fault of a call's argument other than query string and keyword.
inline Fault argument_fault(std::string text)
{
    return {Fault::Kind::Argument, std::move(text), Fault::Where::Nowhere, {}, 0, 0, {}};
}

/// Carries a fault through the library up to the call that hands it out.
class FaultError : public std::exception
{
public:
    explicit FaultError(Fault fault) : fault_(std::move(fault)) {}

    [[nodiscard]] const char* what() const noexcept override { return fault_.text.c_str(); }

    [[nodiscard]] const Fault& fault() const { return fault_; }

private:
    Fault fault_;
};
} // namespace dbapi
