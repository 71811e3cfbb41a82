#pragma once

#include "dbif/connection/column_store.h"
#include "dbif/write/record_values.h"
#include "dbif/write/row_store.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// The keys that a record has: ids of their definitions, and the values as text.
using StoredKeys = std::map<int, std::string>;

/// The names that a new key may have. Databases of older versions can hold keys that are named like
/// a builtin keyname, and a copy keeps them.
enum class NewKeyNames { WithoutBuiltins, AsStored };

/// Defines keys and writes their values, within a writing transaction.
class KeyWriter
{
public:
    explicit KeyWriter(RowStore& rows, NewKeyNames names = NewKeyNames::WithoutBuiltins)
        : rows_(rows), names_(names)
    {}

    /// The id of a key's definition, which is added when there is none. Throws for a name that no
    /// keyword could name, and for a category that the table does not have.
    int
    define(RecordTable table, const std::string& name, ValueKind kind, const std::string& category);
    /// Adds the keys of a record that has none of them, and notes them in `written` when it is
    /// given.
    void
    add(RecordTable table,
        int record,
        const std::vector<KeyValue>& keys,
        StoredKeys* written = nullptr);
    /// The keys of a record that is stored.
    StoredKeys read(RecordTable table, int record);
    /// Adds the keys that are not among `stored`, those of the record, and notes them there; throws
    /// when one has another value. `what` names the record in the error. Whether one was added.
    bool addMissing(
        RecordTable table,
        int record,
        const std::vector<KeyValue>& keys,
        const std::string& what,
        StoredKeys* stored);

    /// The keys that were defined, in that order.
    [[nodiscard]] const std::vector<NewKey>& newKeys() const { return newKeys_; }

private:
    /// The ids of a table's keys. The stored ones are read once, at first use, because no other
    /// writer adds any meanwhile.
    std::map<std::string, int>& definitionsOf(RecordTable table);

    RowStore& rows_;
    NewKeyNames names_;
    std::array<std::optional<std::map<std::string, int>>, kRecordTables.size()> ids_;
    std::vector<NewKey> newKeys_;
};

/// Tells whether the key has no value.
bool is_missing(const KeyValue& key);
/// The value of a key that was written, as text: that of complex numbers and matrices in the form
/// in which they print.
std::string canonical_text(const KeyValue& key);

/// Refuses a text that cannot be stored and found again: `what` names it.
void check_text(const std::string& text, const std::string& what);
} // namespace dbif
