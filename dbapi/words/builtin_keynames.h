#pragma once

#include <map>
#include <set>
#include <string>

// Builtin keynames are fixed words that begin with "$" and stand for fixed columns of the tables:
// "$DEVNAME" for the name of a device. They are recognised in any letter case and after leading
// blanks, but not before trailing ones. None of these functions fails.

/// Tells whether the keyword is a builtin keyname, and the column and table that it stands for
/// (empty when it is none). Both outputs may be null.
bool dbapi_is_vanto_builtin_keyname(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename);

/// Tells whether the keyword is a builtin keyname, written in upper case without blanks, that
/// stands for a stored key instead of a fixed column.
bool dbapi_is_builtin_keyword_dynamic(const std::string& keyword);

/// The builtin keyname for a text of the form "table.column" in any letter case. False, with an
/// empty output, when there is none. `builtin` may be null.
bool dbapi_convert_keyword_to_builtin_keyname(const std::string& text, std::string* builtin);

/// Replaces those key names of one table that are fixed columns with a builtin keyname; the others
/// stay.
void dbapi_convert_any_keynames_in_set_to_builtins(
    std::set<std::string>& keynames,
    const std::string& tablename);

namespace dbapi {
/// Builtin keyname to "table.column"; reversed, the normalised "TABLE.COLUMN" to builtin keyname.
std::map<std::string, std::string> build_builtin_keywords(bool reverse);
/// The builtin keynames that stand for stored keys.
std::set<std::string> dynamic_builtin_keywords();

/// Replaces the content of `keynames` by all builtin keynames. Always true.
bool db_get_builtin_keynames(std::set<std::string>* keynames);
/// Tells whether the keyword is a builtin keyname.
bool db_is_vanto_builtin_keyname(const std::string& keyword);
} // namespace dbapi
