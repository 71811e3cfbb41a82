#pragma once

#include "dbapi/words/fault.h"

#include <optional>
#include <string>
#include <string_view>

// A keyword names a database key in one of three forms:
//
//     KEY(key name,table,data type,category)   in any letter case; fields from the right may be
//                                              left out
//     table.key name                           "table" is an accepted spelling of one, or such a
//                                              spelling, ";" and an attribute string
//     key name
//
// No database is asked here.

namespace dbapi {
/// A category and a data type, in short names and upper case; either may be empty.
struct KeyAttributes
{
    std::string category;
    std::string datatype;
};

/// Splits an attribute string ("PHYSICAL|DOUBLE", "|DOUBLE", "IN") at its first "|".
KeyAttributes split_attributes(const std::string& attributes);

/// The parts of a keyword. Those that it leaves open are empty.
struct KeywordParts
{
    /// As written.
    std::string keyname;
    /// The schema's name of the table.
    std::string tablename;
    /// In short names, as the keyword gives it or the table's spelling implies it.
    std::string attributes;
};

struct SplitKeyword
{
    /// In a keyword that breaks the rules: what was found up to the fault.
    KeywordParts parts;
    std::optional<Fault> fault;
};

/// Splits a keyword into its parts; a blank one has three empty parts. Linear in the keyword.
SplitKeyword split_keyword(const std::string& keyword);

/// The keyword in function form, "Key(vth,device,DOUBLE,PHYSICAL)", without the empty fields at its
/// end. It splits back into the same parts.
std::string function_form(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& datatype,
    const std::string& category);
} // namespace dbapi
