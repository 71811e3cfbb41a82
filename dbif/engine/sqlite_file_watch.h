#pragma once

#include "dbif/engine/sql_dialect.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>

struct sqlite3;

namespace dbif {
/// Tells an SQLite file that somebody replaced or overwrote from one that SQLite itself wrote,
/// through this or any other connection. The handle has to be open, and outlives the watch.
class SqliteFileWatch
{
public:
    /// `path` is the one under which the file was opened; what stands there now is what later looks
    /// compare with.
    SqliteFileWatch(sqlite3* handle, std::string path, SqlSession& session);

    /// Costs one look at the file's status as long as that is the same. Once a file is overwritten
    /// beside a log of the old one, the connection writes no more of that log into it.
    FileState state();

private:
    /// The length of the write-ahead log, and the part of it that is in the file already.
    struct LogState
    {
        std::array<std::uint32_t, 2> salt{}; // another one each time the log begins anew
        std::uint32_t frames = 0;
        std::uint32_t checkpointed = 0;
        std::uint32_t checkpointBegun = 0;
        std::int64_t databaseSize = 0; // in bytes, of the database with its log

        [[nodiscard]] bool isInCheckpoint() const { return checkpointBegun > checkpointed; }

        friend bool operator==(const LogState&, const LogState&) = default;
    };

    using Header = std::array<char, 100>;

    [[nodiscard]] std::optional<LogState> logState() const;
    [[nodiscard]] Header header() const;
    [[nodiscard]] std::optional<struct stat> logFileStatus() const;
    [[nodiscard]] bool
    wroteSqlite(const struct stat& file, const std::optional<LogState>& log) const;
    void accept();

    sqlite3* handle_;
    std::string path_;
    SqlSession& session_;

    // The state that was last seen and found in order.
    bool isWal_ = false;
    std::optional<struct stat> file_;
    std::optional<LogState> log_;
    Header header_{};
    ChangeToken token_;
};
} // namespace dbif
