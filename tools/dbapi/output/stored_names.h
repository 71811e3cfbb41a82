#pragma once

#include "dbif/connection/connection.h"
#include "dbui/connection_record.h"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbapi::tool {
/// Why a stored connection cannot be used: the text says what is wrong and what to do.
class ConnectionFailure : public std::runtime_error
{
public:
    enum class Reason {
        NoConnection, ///< none of that name is stored, or it does not open
        NoDatabase    ///< it opens, but is no measurement database
    };

    ConnectionFailure(Reason reason, const std::string& text)
        : std::runtime_error(text), reason_(reason)
    {}

    [[nodiscard]] Reason reason() const { return reason_; }

private:
    Reason reason_;
};

/// The names of the stored connections; none when no connection was ever stored. Throws
/// `ConnectionFailure` when their file cannot be read.
std::set<std::string> stored_names();

/// All stored connections, sorted by name; fails like `stored_names`.
std::vector<DbuiConnection> stored_connections();

/// The stored connection of that name. Throws `ConnectionFailure`, which suggests other names, when
/// there is none.
DbuiConnection stored_connection(const std::string& name);

/// The connection to read from: a stored one, or the path of an SQLite file. Fails like
/// `stored_connection`.
DbuiConnection known_connection(const std::string& name);

/// Opens it; a file that is named by its path for reading only. Throws `ConnectionFailure` when it
/// does not open, or is no measurement database.
DBIF_Connection open_known(const std::string& name);

/// Opens a connection to write to. Throws `ConnectionFailure` for a file that is named by its path,
/// too.
DBIF_Connection open_for_writing(const std::string& name);
} // namespace dbapi::tool
