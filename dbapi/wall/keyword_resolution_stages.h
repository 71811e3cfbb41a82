#pragma once

#include <QtGlobal>

#include <map>
#include <set>
#include <string>

// The two stages of resolving a keyword (see keyword_resolution.h) that ask no database. Outputs
// must not be null, and are empty after a failure; the text goes to `error`, or to the standard
// error stream when that is null.

/// First stage: the names by which the catalogue is asked. Splits the keyword, and replaces a
/// builtin keyname by the column and table that it stands for; its attribute string is
/// "BUILTINFIXED", or empty when it stands for a stored key. Table and attributes of other keywords
/// are what the keyword says, possibly nothing. False for a keyword that cannot be split, and for a
/// builtin keyname with a table or attributes.
bool dbapi_extract_potential_db_names_from_keyword(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error);

/// Second stage: the one key of the preprocessed map (see keyword_map.h) that agrees with the
/// keyword. False when no key or several do.
bool dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
    const std::string& keyword,
    const std::map<std::string, std::set<std::string>>& map,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error);

namespace dbapi {
/// Marks, while it lives, that a keyword is being resolved. Marks nest; the outermost one sets and
/// clears the state of the process, which belongs to one thread.
class ResolutionMark
{
    Q_DISABLE_COPY_MOVE(ResolutionMark)

public:
    ResolutionMark();
    ~ResolutionMark();

    /// Tells whether one lives.
    [[nodiscard]] static bool is_resolving();

private:
    bool isOutermost_;
};
} // namespace dbapi
