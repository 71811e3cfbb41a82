#pragma once

#include "dbif/connection/column_store.h"
#include "dbif/connection/connection.h"

#include <cstddef>
#include <vector>

namespace dbif {
/// The setups that have each of some keys, by one pass over the index of the keys: where many of
/// all setups are read, that costs a fraction of a look-up for each of them.
class KeyPresence
{
public:
    /// Tells whether the pass pays for setups (ascending ids): they are many, and a good part of
    /// all that there are.
    static bool isWorthwhile(DBIF_Connection& connection, const std::vector<int>& setups);

    /// `setups` are not empty. Throws `DBIF_Exception` on a database error.
    KeyPresence(
        DBIF_Connection& connection,
        const std::vector<int>& setups,
        const std::vector<KeyDefinition>& columns);

    /// Tells whether one of the setups has the key at a place among the columns.
    [[nodiscard]] bool has(int setup, std::size_t column) const
    {
        return columns_[column][static_cast<std::size_t>(setup - first_)];
    }

private:
    int first_;
    /// For each column, a mark for each id from the first setup to the last.
    std::vector<std::vector<bool>> columns_;
};
} // namespace dbif
