#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

// The accepted spellings of tables, categories and data types, and the conversions between their
// short names (which the database stores) and their full names (which users read). Every argument
// is normalised before it is looked up: leading blanks and letter case do not count, trailing
// blanks do. An unknown spelling is no error here; the callers word those.
//
// An attribute string is a category, "|" and a data type, both in short form and either of them
// possibly missing: "PHYSICAL|DOUBLE", "|DOUBLE", "PHYSICAL" or nothing.

/// The table that a spelling stands for, and the attributes that the spelling implies. False, with
/// both outputs empty, for an unknown spelling.
bool dbapi_find_tablename_in_table_vocabulary(
    const std::string& name,
    std::string* tablename,
    std::string* attributes);
/// The short name that a spelling stands for. False, with the output empty, for an unknown
/// spelling.
bool dbapi_find_category_from_category_vocabulary(const std::string& name, std::string* category);
bool dbapi_find_datatype_from_datatype_vocabulary(const std::string& name, std::string* datatype);

/// Tells whether the category marks a fixed column of a table: "FIXED" or "BUILTINFIXED".
bool dbapi_is_category_fixed(const std::string& name);
/// Tells whether the category is a setup key's direction; at most one flag is set. The lower-case
/// "in" and "out" are not recognised, "input" and "output" are.
bool dbapi_is_category_input(const std::string& name, bool* isInput, bool* isOutput);
/// The same as `dbapi::convert_to_short_category_name`.
std::string dbapi_convert_to_short_category_name(const std::string& name);

namespace dbapi {
/// Spelling to table name and implied attribute string; spelling to short name. All spellings are
/// upper case.
std::map<std::string, std::pair<std::string, std::string>> build_tablenames_vocabulary();
std::map<std::string, std::string> build_categories_vocabulary();
std::map<std::string, std::string> build_datatypes_vocabulary();

/// Tells whether the text is an accepted spelling. These build the vocabulary that they ask, and so
/// do not depend on the process-wide ones. Categories include "FIXED" and "BUILTINFIXED", which
/// stand in no vocabulary.
bool is_string_a_valid_tablename(const std::string& name);
bool is_string_a_valid_category(const std::string& name);
bool is_string_a_valid_datatype(const std::string& name);

/// "IN" to "INPUT", "OUT" to "OUTPUT" and back. Anything else comes back exactly as given; so "in"
/// has no short form of its own.
std::string convert_to_full_category_name(const std::string& name);
std::string convert_to_short_category_name(const std::string& name);
/// The data type's word for its short name and back. Anything else comes back normalised.
std::string convert_to_full_datatype_name(const std::string& name);
std::string convert_to_short_datatype_name(const std::string& name);
std::string convert_setup_is_input_to_full_category_name(bool isInput);
std::string convert_setup_is_input_to_short_category_name(bool isInput);

/// Tells whether both name the same category: "INPUT" and "IN" do.
bool compare_category_names(const std::string& a, const std::string& b);

/// The four data types, each as its word and its short name, in the order in which conversions try
/// them.
const std::vector<std::pair<std::string, std::string>>& datatype_names();
} // namespace dbapi
