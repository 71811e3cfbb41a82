#include "dbif/sweep/key_presence.h"

#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"

namespace dbif {
namespace {
constexpr std::size_t kFewSetups = 1000;
/// A read in parts makes a pass for each part.
constexpr std::size_t kMostPasses = 4;
} // namespace

bool KeyPresence::isWorthwhile(DBIF_Connection& connection, const std::vector<int>& setups)
{
    return setups.size() > kFewSetups &&
           setups.size() >= highest_id(connection, RecordTable::Setup) / kMostPasses;
}

KeyPresence::KeyPresence(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns)
    : first_(setups.front())
{
    const int last = setups.back();
    for (const KeyDefinition& column : columns) {
        std::vector<bool>& marks = columns_.emplace_back();
        marks.resize(static_cast<std::size_t>(last - first_) + 1);
        SqlText sql = "SELECT setup_id FROM setup_association WHERE setup_column_id = ";
        BulkCursor cursor(connection, sql << column.id);
        while (cursor.next()) {
            const int setup = cursor.integer(0);
            if (setup >= first_ && setup <= last) {
                marks[static_cast<std::size_t>(setup - first_)] = true;
            }
        }
    }
}
} // namespace dbif
