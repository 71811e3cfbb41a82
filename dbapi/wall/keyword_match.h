#pragma once

#include <set>
#include <string>

/// Tells whether a key of the database agrees with everything that a keyword says about it. Key and
/// table names are compared exactly, with letter case; an empty table, data type or category of the
/// keyword agrees with any. Data types and categories may be given in full or in short ("INPUT"
/// agrees with "IN"). Never fails, and asks no database.
bool dbapi_compare_keyword_key_table_attributes_are_potential_match_to_db_key(
    const std::string& keywordKeyname,
    const std::string& keywordTablename,
    const std::string& keywordDatatype,
    const std::string& keywordCategory,
    const std::string& databaseKeyname,
    const std::string& databaseTablename,
    const std::string& databaseDatatype,
    const std::string& databaseCategory);

/// The error text for a keyword that several keys agree with. `candidates` are canonical texts (see
/// keyword_map.h); each is listed in function form, so that the user can copy one as a keyword that
/// is unique.
std::string dbapi_create_ambiguous_keyword_error_message(
    const std::string& keyword,
    const std::set<std::string>& candidates);
