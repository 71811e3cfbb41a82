#pragma once

#include "dbapi/key/wanted_key.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace dbapi {
/// The rule by which the key of a keyword was chosen.
enum class ResolutionRule {
    Builtin,       ///< a builtin keyname stands for a fixed column
    StoredBuiltin, ///< a builtin keyname stands for a stored key
    FixedColumn,   ///< the keyword's category says that it names a fixed column
    OnlyName,      ///< one key only has the name
    Definition,    ///< several have it, and one agrees with table, category and data type
    Catalogue      ///< several agree, and the selected records have one of them
};

/// The outcome of resolving a keyword.
struct Resolution
{
    enum class Outcome {
        Found,     ///< one key; `candidates` holds it
        NoColumn,  ///< a fixed column that its table does not have; `candidates` holds its words
        NotFound,  ///< no key agrees
        Ambiguous, ///< several agree: `candidates`
        Malformed  ///< the keyword breaks the rules
    };

    Outcome outcome = Outcome::NotFound;
    std::vector<KeyCandidate> candidates;
    /// Why there is no one key: its place in the keyword, the message and the candidates. Of
    /// `NotFound`, `Ambiguous` and `Malformed`.
    Fault fault;
    ResolutionRule rule = ResolutionRule::OnlyName;
    /// How many stored keys have the name, and how many of them agree with the keyword.
    std::size_t named = 0;
    std::size_t agreeing = 0;

    [[nodiscard]] bool isFound() const { return outcome == Outcome::Found; }

    /// Tells whether the keyword names one key, be there such a column or not.
    [[nodiscard]] bool isUnique() const { return isFound() || outcome == Outcome::NoColumn; }

    /// The column of the key; call only for `Found`.
    [[nodiscard]] const dbif::TableColumn& column() const { return *candidates.front().column; }

    /// Tells whether the answer is the same under every condition.
    [[nodiscard]] bool holdsAlways() const { return rule != ResolutionRule::Catalogue; }
};

/// Chooses, among keys whose words are known, the one that agrees with a keyword (as the caller
/// wrote it, for messages). Several are listed in the order in which they are given. Asks no
/// database.
Resolution choose_key(
    const std::string& keyword,
    const WantedKey& wanted,
    const std::vector<KeyCandidate>& keys);

/// The resolution of each of several keywords, by keyword.
using Resolutions = std::map<std::string, Resolution>;

/// Resolves keywords against the definitions of keys, which are kept with the connection, so that
/// mostly no statement runs: a key counts also when no selected record has it. Only for keywords
/// that several keys agree with is the catalogue asked which of them the records have that satisfy
/// `condition` (null: all records; the latest alone for `latestOnly`).
///
/// Fixed columns that one of the keywords names are candidates for the others too. Throws
/// `FaultError` for the first keyword, in their order, that breaks the rules, and `DBIF_Exception`
/// on a database error.
Resolutions resolve_keywords(
    DBIF_Connection& connection,
    const std::set<std::string>& keywords,
    const DBIF_QueryCondition* condition,
    bool latestOnly);

/// Resolves one keyword in the same way; throws for none. A blank keyword, one that breaks the
/// rules and a database error are outcomes with a fault.
Resolution resolve_keyword(
    DBIF_Connection& connection,
    const std::string& keyword,
    const DBIF_QueryCondition* condition,
    bool latestOnly);
} // namespace dbapi
