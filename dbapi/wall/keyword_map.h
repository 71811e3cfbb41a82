#pragma once

#include <map>
#include <set>
#include <string>

// Two kinds of maps are searched by keyword, both by its normalised text (see text_rules.h):
//   - text to text: one keyword-like text per name, for names that are fixed;
//   - the preprocessed map: per key name the set of all database keys of that name, each as
//   canonical text,
//     "table.key" or "table;ATTRIBUTES.key". Splitting such a text gives the key's parts back.
// Pointers to outputs of look-ups may be null. None of these functions fails.

/// Adds a text-to-text entry under the normalised key name, with the key's canonical text as value.
/// An entry that exists stays.
void add_keyword_to_map(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& category,
    const std::string& datatype,
    std::map<std::string, std::string>* map);

/// Looks a keyword up in a text-to-text map, and splits the value that it finds. False, with empty
/// outputs, when there is none.
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

/// A preprocessed map with the keys of both.
std::map<std::string, std::set<std::string>> merge_maps(
    const std::map<std::string, std::set<std::string>>& a,
    const std::map<std::string, std::set<std::string>>& b);

/// Writes every pair of a text-to-text map to the standard error stream, for diagnosis.
void print_map_to_stderr(const std::map<std::string, std::string>& map);
