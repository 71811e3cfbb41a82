#pragma once

#include <map>
#include <set>
#include <string>

// Two kinds of maps are searched by keyword, both by its normalised text (see text_rules.h):
//
//  - the text-to-text map: one keyword-like text for each name, for names that are fixed;
//  - the preprocessed map: for each key name the set of all database keys of that name.
//
// A key stands in them as its canonical text, "table.key" or "table;ATTRIBUTES.key", which is a
// keyword itself: splitting it gives the key's parts back. Texts are UTF-8. The map must not be
// null; pointers to outputs of look-ups may be. None of these functions fails or asks a database.

/// Adds a text-to-text entry under the normalised key name, with the key's canonical text as value.
/// An entry that exists stays.
void add_keyword_to_map(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& category,
    const std::string& datatype,
    std::map<std::string, std::string>* map);

/// Looks a keyword up in a text-to-text map, and splits the text that it finds into key name, table
/// and attribute string. False, with empty outputs, when there is none.
bool dbapi_is_keyword_in_map(
    const std::map<std::string, std::string>& map,
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes);

/// Adds a database key to a preprocessed map. A key that it holds already is not added twice.
void add_keyword_to_map2(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& attributes,
    std::map<std::string, std::set<std::string>>* map);

/// Adds canonical texts to a preprocessed map, under the normalised key name.
void add_keyword_entry_into_map(
    const std::string& keyname,
    const std::set<std::string>& texts,
    std::map<std::string, std::set<std::string>>* map);

/// Looks a key name up in a preprocessed map, and copies its canonical texts. False, with an empty
/// output, when there is none.
bool dbapi_is_keyword_in_map2(
    const std::map<std::string, std::set<std::string>>& map,
    const std::string& keyword,
    std::set<std::string>* texts);

/// A preprocessed map with the keys of both; a key of both is in it once.
std::map<std::string, std::set<std::string>> merge_maps(
    const std::map<std::string, std::set<std::string>>& a,
    const std::map<std::string, std::set<std::string>>& b);

/// Writes every pair of a text-to-text map to the standard error stream, one on a line, for
/// diagnosis.
void print_map_to_stderr(const std::map<std::string, std::string>& map);
