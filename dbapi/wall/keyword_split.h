#pragma once

#include <string>

// The parts of a keyword as texts. docs/keywords.md describes the forms of keywords. Texts are
// UTF-8, pointers must not be null, and no database is asked.

/// Splits a keyword into its parts. Key names keep their letter case; the table becomes the
/// schema's table name or stays empty; the attributes are an attribute string in short names (see
/// vocabulary.h), also those that the table's spelling implies. A blank keyword has three empty
/// parts.
///
/// False when the keyword breaks the rules: `error` then holds two lines that say why, and the
/// other outputs what was found until there. Linear in the keyword.
bool break_keyword_into_keyname_tablename_extra_attributes(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error);

/// Splits an attribute string at its first "|"; both halves come out in upper case.
void dbapi_extract_category_datatype_attributes(
    const std::string& attributes,
    std::string* category,
    std::string* datatype);

/// The keyword in function form, "Key(vth,device,DOUBLE,PHYSICAL)", without the empty fields at its
/// end. It splits back into the same parts.
std::string dbapi_full_keyname_from_keyname_and_attributes(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& datatype,
    const std::string& category);
