#pragma once

#include "dbapi/words/fault.h"
#include "dbif/value/table_column.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace dbapi {
/// The key that a keyword asks for, as far as it is known without a database. Parts left open are
/// empty.
struct WantedKey
{
    enum class Form {
        Key,           ///< a stored key
        FixedColumn,   ///< a fixed column, by its category
        Builtin,       ///< a builtin keyname that stands for a fixed column
        StoredBuiltin, ///< a builtin keyname that stands for a stored key
    };

    Form form = Form::Key;
    /// The name of the key or of the fixed column, as written.
    std::string name;
    /// The schema's name of the table.
    std::string table;
    /// As the keyword gives them (see `KeyAttributes`), together and apart.
    std::string attributes;
    std::string category;
    std::string datatype;

    [[nodiscard]] bool isFixed() const
    {
        return form == Form::FixedColumn || form == Form::Builtin;
    }
};

/// Splits a keyword, and replaces a builtin keyname by the column that it stands for. A fault for a
/// keyword that breaks the rules, and for a builtin keyname with a table or attributes.
std::variant<WantedKey, Fault> wanted_key(const std::string& keyword);

/// The text of such a fault without the line that says which keyword was not resolved.
std::string reason_of(const Fault& fault);

/// A key that may be meant by keywords: its column, and how keywords and messages describe it.
struct KeyCandidate
{
    std::string name;
    std::string table;
    /// In short names, upper case.
    std::string attributes;
    std::string category;
    std::string datatype;
    /// Nothing where a fixed column was asked for that the table does not have, and where only the
    /// words are known.
    std::optional<dbif::TableColumn> column;

    /// "table.key" or "table;ATTRIBUTES.key": candidates are listed in the order of these texts,
    /// and two with the same text are the same key.
    [[nodiscard]] std::string canonicalText() const;
    /// "Key(vth,device,DOUBLE,PHYSICAL)", with the full words of category and data type.
    [[nodiscard]] std::string functionForm() const;
};

/// The candidate that a stored key is.
KeyCandidate candidate_of(dbif::RecordTable table, const dbif::KeyDefinition& key);
/// The candidate that a keyword names by itself: a fixed column.
KeyCandidate fixed_candidate(const WantedKey& wanted);

/// Tells whether a key agrees with everything that a keyword says of it. Names and tables are
/// compared exactly, with letter case; "INPUT" agrees with "IN".
bool agrees(const WantedKey& wanted, const KeyCandidate& candidate);

/// The message for a keyword that several keys agree with; each, in function form, is a keyword
/// that is unique.
std::string ambiguity_text(const std::string& keyword, const std::vector<std::string>& candidates);

/// `Error: Failed to resolve keyword "W" to a valid database key.` and the reason behind it.
std::string resolution_failure(const std::string& keyword, const std::string& reason);
/// The message for a keyword without text.
std::string empty_keyword_text(const std::string& keyword);
} // namespace dbapi
