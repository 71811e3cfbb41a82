#pragma once

#include "dbapi/wall/keyword_resolution.h"

#include <cstddef>
#include <string>

namespace dbapi {
/// What decided which key a keyword stands for.
enum class ResolutionRule {
    Builtin,       ///< a builtin keyname stands for a fixed column
    StoredBuiltin, ///< a builtin keyname stands for a stored key
    FixedColumn,   ///< the keyword's category says that it names a fixed column
    OnlyName,      ///< one key only has the name
    Definition,    ///< several have it, and one agrees with table, category and data type
    Catalogue      ///< several agree, and the selected records have one of them
};

/// A resolved keyword, and how it came about.
struct RuledKey
{
    ResolvedKey key;
    ResolutionRule rule = ResolutionRule::OnlyName;
    /// How many stored keys have the name, and how many of them agree with the keyword.
    std::size_t named = 0;
    std::size_t agreeing = 0;
};

/// Resolves a keyword as the value calls do (see `resolve_keyword_by_definition`), and tells by
/// which rule.
bool resolve_keyword_with_rule(
    DBIF_Connection& connection,
    const std::string& keyword,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    RuledKey* found,
    std::string* error);
} // namespace dbapi
