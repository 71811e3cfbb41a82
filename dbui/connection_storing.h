#pragma once

#include "dbui/connection_record.h"

#include <optional>
#include <string>

/// Stores a connection under a name that no other record has, whatever other programs do meanwhile.
namespace dbui {
struct StoreRequest
{
    DbuiConnection connection;
    /// The stored record whose place it takes; nothing when it is added.
    std::optional<DbuiConnection> replaced;
    /// Tells whether a file that is no XML may be replaced; it is kept as ".unreadable" beside it.
    bool mayReplaceDamagedFile = false;
};

enum class StoreOutcome {
    Stored,
    NameTaken,   ///< another record has the name
    Outdated,    ///< the record to replace is not stored any more
    FileDamaged, ///< the file is no XML, and may not be replaced
    Failed       ///< the file cannot be read or written, or the record has no name
};

/// The outcome that storing would have as the file stands now; never `FileDamaged` or `Failed`.
/// Writes nothing.
StoreOutcome foresee_storing(const StoreRequest& request);

/// Stores the record as the last one, and takes the replaced one out. Looks at the names and writes
/// as one step among all processes, and is announced by `dbConnectionNameListener`. Anything but
/// `Stored` leaves the file as it is; `error` gets the text of `Failed` (none where the
/// name is missing), and is emptied otherwise.
StoreOutcome store_connection(const StoreRequest& request, std::string* error);
} // namespace dbui
