#pragma once

#include "dbif/connection/connection.h"
#include "dbif/value/data_type.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace dbapi {
/// Key name to the keywords, in function form, of all keys that have it; those of one table, or of
/// all when `table` is empty.
std::map<std::string, std::vector<std::string>>
function_keywords(DBIF_Connection connection, const std::string& table = {});

/// The keys that exist in a database, to tell what is wrong with a keyword.
class KnownKeys
{
public:
    explicit KnownKeys(DBIF_Connection connection);

    [[nodiscard]] const DBIF_Connection& connection() const { return connection_; }

    /// The data type of the one key that a keyword names; nothing when it names none, or several.
    [[nodiscard]] std::optional<dbif::ValueKind> kindOf(const std::string& keyword);

    /// Keywords of existing keys that somebody who wrote this one may have meant, the likeliest
    /// first.
    [[nodiscard]] std::vector<std::string> near(const std::string& keyword) const;

    /// "W in the table device", for a message about a keyword that names one key.
    [[nodiscard]] std::string describe(const std::string& keyword);

private:
    /// A keyword for each key of that name.
    [[nodiscard]] std::vector<std::string> keywordsFor(const std::string& name) const;

    DBIF_Connection connection_;
    /// As `function_keywords`, and builtin keynames to nothing.
    std::map<std::string, std::vector<std::string>> spellings_;
    std::set<std::string> names_;
};
} // namespace dbapi
